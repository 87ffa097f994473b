// The library's fixed waits run on emulated time: these stand in for the C
// library's usleep(), sleep() and select() without descriptors in the test
// program and only count.
#include "fake_sleep.hpp"

#include <dlfcn.h>
#include <sys/select.h>
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
// A select() with nothing to watch is a sleep too; any other goes to the C library.
__attribute__((visibility("default"))) int select(int n, fd_set *r, fd_set *w, fd_set *e, struct timeval *t)
{
    if (n == 0 && !r && !w && !e && t) {
        fake_sleep::slept_us += 1000000ULL * t->tv_sec + t->tv_usec;
        fake_sleep::calls++;
        *t = {0, 0};
        return 0;
    }
    using real_fn = int (*)(int, fd_set *, fd_set *, fd_set *, struct timeval *);
    static real_fn real = reinterpret_cast<real_fn>(dlsym(RTLD_NEXT, "select"));
    return real(n, r, w, e, t);
}
__attribute__((visibility("default"))) unsigned int sleep(unsigned int s)
{
    fake_sleep::slept_us += 1000000ULL * s;
    fake_sleep::calls++;
    return 0;
}
}
