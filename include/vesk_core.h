/* The call frame: bounded waits, LED hooks, small device queries and the
 * assertion used by the socket and text-file code. */
#ifndef VESK_CORE_H
#define VESK_CORE_H

#include <stdio.h>
#include <stdlib.h>

#include "vesk_defs.h"

/* Prints the failed expression with the function, source file and line to
 * standard output and ends the process with exit(1). */
#ifdef __FILE_NAME__
#define VESK_ASSERT_FILE __FILE_NAME__
#else
#define VESK_ASSERT_FILE __FILE__
#endif
#define VESK_ASSERT(expr)                                                              \
    do {                                                                               \
        if (!(expr)) {                                                                 \
            printf("VESK_ASSERT FAILED '" #expr "' %s %s:%d\n", __func__,              \
                   VESK_ASSERT_FILE, __LINE__);                                        \
            exit(1);                                                                   \
        }                                                                              \
    } while (0)

VESK_BEGIN_DECLS

/* Polls cond every 100 ms tick; ticks <= 0 means 10. cond is tested at most
 * ticks + 1 times and a null cond counts as false.
 * Returns 1 when cond became true, 0 when the time ran out. */
VESK_API int vesk_wait_until_funp(int (*cond)(void), int ticks);

/* Returns 1 at once when cond is non-zero; otherwise sleeps ticks + 1 ticks
 * of 100 ms (ticks <= 0 means 10) and returns 0. */
VESK_API int vesk_wait_until(int cond, int ticks);

/* 1 when /mnt/usboot exists (USB-boot operation), else 0. */
VESK_API int vesk_get_usboot(void);

/* 1 when the store's number "schedule_en" is non-zero, else 0. */
VESK_API int vesk_util_get_sch_en(void);

/* LED hooks. All are empty but vesk_led_boot_up, which runs
 * "led_ctl diag off" for state 0 and nothing for any other state. */
VESK_API void vesk_led_fw_upgrade(int on);
VESK_API void vesk_led_save_conf(void);
VESK_API void vesk_led_schedule(void);
VESK_API void vesk_led_get_wan_ip(void);
VESK_API void vesk_led_boot_up(int state);

VESK_END_DECLS

#endif
