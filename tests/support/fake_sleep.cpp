// The library's fixed waits run on emulated time: these stand in for the C
// library's usleep() and sleep() in the test program and only count.
#include "fake_sleep.hpp"

#include <unistd.h>

namespace fake_sleep {
unsigned long long slept_us;
unsigned int calls;
void reset()
{
    slept_us = 0;
    calls = 0;
}
} // namespace fake_sleep

extern "C" {
__attribute__((visibility("default"))) int usleep(useconds_t us)
{
    fake_sleep::slept_us += us;
    fake_sleep::calls++;
    return 0;
}
__attribute__((visibility("default"))) unsigned int sleep(unsigned int s)
{
    fake_sleep::slept_us += 1000000ULL * s;
    fake_sleep::calls++;
    return 0;
}
}
