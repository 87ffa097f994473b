// Stands in for the C library's time() in the test program. The host's
// clock is never set: a test that needs a given day fixes this one.
#include "fake_clock.hpp"

namespace fake_clock {
namespace {
bool fixed;
time_t now;
} // namespace
void set(time_t t)
{
    now = t;
    fixed = true;
}
void release() { fixed = false; }
} // namespace fake_clock

extern "C" __attribute__((visibility("default"))) time_t time(time_t *out)
{
    time_t t = fake_clock::now;
    if (!fake_clock::fixed) {
        struct timespec ts;
        t = clock_gettime(CLOCK_REALTIME, &ts) == 0 ? ts.tv_sec : static_cast<time_t>(-1);
    }
    if (out)
        *out = t;
    return t;
}
