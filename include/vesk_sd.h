/* The system daemon's control link: one text command as a datagram to
 * /var/sd_if/if0, then the daemon's interim reports and its final reply. */
#ifndef VESK_SD_H
#define VESK_SD_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Sends command (non-empty text) to the system daemon and waits for its
 * final reply, printing each interim report (a reply that starts with "<")
 * as "[text] [length]". Each wait lasts at most 40 seconds. A command that
 * ends in "&" is sent without the "&" and not waited for; its reply is
 * "OK". reply may be null, else it must hold 128 bytes. Results:
 *    0  the final reply came (or the command was fire-and-forget)
 *   -1  a socket, bind, connect, send or receive call failed; an empty
 *       or null command
 *   -2  no datagram came within 40 seconds
 *   -3  /var/sd_if/if0 does not exist
 * reply is written only for 0. The client socket /var/sd_local_PID-168 is
 * removed again before the call returns. */
VESK_API int vesk_sd_ctrl(const char *command, char *reply);

VESK_END_DECLS

#endif
