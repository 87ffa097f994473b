// Bit arithmetic shared by the text helpers and the vendor table.
#pragma once

#include <stdint.h>

namespace vesk {

// Bit length of value: halve the search three times, then a table of the
// bit lengths of 0..15.
constexpr int msb32(uint32_t value)
{
    constexpr int8_t kMsbTable[16] = {0, 1, 2, 2, 3, 3, 3, 3, 4, 4, 4, 4, 4, 4, 4, 4};
    int result = 0;
    if (value & 0xFFFF0000u) {
        value >>= 16;
        result += 16;
    }
    if (value & 0xFF00u) {
        value >>= 8;
        result += 8;
    }
    if (value & 0xF0u) {
        value >>= 4;
        result += 4;
    }
    return result + kMsbTable[value];
}

static_assert(msb32(0) == 0 && msb32(1) == 1 && msb32(3) == 2 && msb32(0x10000) == 17);
static_assert(msb32(0x80000000u) == 32 && msb32(0xFFFFFFFFu) == 32);

} // namespace vesk
