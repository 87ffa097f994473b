/* A small TCP client for request-and-reply talks with a daemon. The caller
 * owns one vesk_socket_pkt per connection: init, connect, build a request
 * with the writes, send it in one piece, receive one reply, close. Every
 * network wait is bounded by a timeout kept in the record. A null record
 * (and a null ptr or a len of MAX_VESK_SOCKET_BUFFER or more) is a failed
 * assertion: the line goes to standard output and the process exits with
 * status 1. */
#ifndef VESK_SOCKET_H
#define VESK_SOCKET_H

#include "vesk_defs.h"

/* Capacity of each data buffer, and the bound of one formatted write. */
#define MAX_VESK_SOCKET_BUFFER 1500

typedef struct vesk_socket_pkt {
    char name[256];              /* host name or dotted address */
    unsigned short port;         /* TCP port, host order */
    int sock;                    /* descriptor, written by connect */
    int sock_timeout;            /* seconds: SO_RCVTIMEO and SO_SNDTIMEO (2) */
    int send_timeout;            /* seconds to wait for writability (5) */
    int recv_timeout;            /* seconds to wait for readability (5) */
    char out_buf[MAX_VESK_SOCKET_BUFFER]; /* the request being built */
    int out_len;
    char in_buf[MAX_VESK_SOCKET_BUFFER];  /* the last reply, zero-terminated */
    int in_len;                  /* what the dump shows of in_buf; set by the caller */
    int pos_to_write;            /* bytes written since the last send */
} vesk_socket_pkt;

VESK_BEGIN_DECLS

/* Zeroes the record, copies name (at most 255 characters), stores port and
 * sets the timeouts to 2, 5 and 5 seconds. 1, or 0 with a message for a
 * null argument. */
VESK_API int vesk_socket_pkt_init(vesk_socket_pkt *pkt, const char *name, unsigned short port);

/* Prints the record's counters, name and port and hex dumps of out_buf
 * (out_len bytes) and in_buf (in_len bytes) when they are not empty. 1. */
VESK_API int vesk_socket_pkt_dump(vesk_socket_pkt *pkt);

/* Appends printf text (at most 1499 characters, no terminator counted) to
 * out_buf. Writes stop at the room left in out_buf. 1. */
VESK_API int vesk_socket_pkt_write(vesk_socket_pkt *pkt, const char *format, ...) VESK_PRINTF(2, 3);

/* Appends len bytes of ptr to out_buf, as far as there is room. 1. */
VESK_API int vesk_socket_pkt_write_binary(vesk_socket_pkt *pkt, const void *ptr, int len);

/* Resolves name (IPv4), sets the socket timeouts and connects. 1 when
 * connected, else 0 with the socket closed again (do not close it then). */
VESK_API int vesk_socket_do_connect(vesk_socket_pkt *pkt);

/* Waits up to send_timeout seconds for writability and sends out_buf in one
 * send. 0 on a timeout, with the request kept for another try; otherwise 1
 * and the request is gone, also when the send failed (reported on standard
 * error). */
VESK_API int vesk_socket_send(vesk_socket_pkt *pkt);

/* Waits up to recv_timeout seconds and receives at most len - 1 bytes into
 * in_buf, zero-terminated; len is 1 to 1499. Bytes received, 0 when the
 * peer closed, -1 on a timeout or failure (reported on standard error). */
VESK_API int vesk_socket_recv(vesk_socket_pkt *pkt, int len);

/* Closes the socket; close()'s result. The record can connect again. */
VESK_API int vesk_socket_close(vesk_socket_pkt *pkt);

VESK_END_DECLS

#endif
