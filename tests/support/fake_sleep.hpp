#pragma once

// Totals of the sleeps that the library asked for since the last reset().
namespace fake_sleep {
extern unsigned long long slept_us;
extern unsigned int calls;
void reset();
} // namespace fake_sleep
