#pragma once

#include <time.h>

// The wall clock as the library reads it through time(): the real clock
// until a test fixes it, so that day-dependent code sees a chosen day.
namespace fake_clock {
void set(time_t t);
void release(); // back to the real clock

// Fixes the clock for one scope.
struct scoped {
    explicit scoped(time_t t) { set(t); }
    ~scoped() { release(); }
    scoped(const scoped &) = delete;
    scoped &operator=(const scoped &) = delete;
};
} // namespace fake_clock
