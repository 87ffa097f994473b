// Bounded waits, LED hooks and two one-line device queries.
#include "core/command.hpp"
#include "vesk_core.h"

#include <unistd.h>

#include "quil.h"
#include "sysapi.h"

namespace {

constexpr useconds_t kTick = 100000; // one tick is 100 ms
constexpr int kDefaultTicks = 10;

int effective_ticks(int ticks) { return ticks <= 0 ? kDefaultTicks : ticks; }

} // namespace

extern "C" {

int vesk_wait_until_funp(int (*cond)(void), int ticks)
{
    ticks = effective_ticks(ticks);
    for (int count = 0;;) {
        if (cond && cond())
            return 1;
        usleep(kTick);
        if (++count > ticks)
            return 0;
    }
}

int vesk_wait_until(int cond, int ticks)
{
    if (cond)
        return 1;
    ticks = effective_ticks(ticks);
    for (int i = 0; i <= ticks; i++)
        usleep(kTick);
    return 0;
}

int vesk_get_usboot(void) { return access("/mnt/usboot", F_OK) == 0 ? 1 : 0; }

int vesk_util_get_sch_en(void) { return quil_get_int_value("schedule_en") != 0 ? 1 : 0; }

void vesk_led_fw_upgrade(int) {}
void vesk_led_save_conf(void) {}
void vesk_led_schedule(void) {}
void vesk_led_get_wan_ip(void) {}

void vesk_led_boot_up(int state)
{
    if (state == 0)
        vesk::cmd::run(__func__, "led_ctl diag off");
}

} // extern "C"
