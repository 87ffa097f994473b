// Little-endian fields of records that drivers fill and the store holds, read
// and written byte by byte: such fields often lie at unaligned offsets, and
// an unaligned load faults on the board.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace vesk {

inline uint16_t load_le16(const unsigned char *p) { return static_cast<uint16_t>(p[0] | p[1] << 8); }

inline uint32_t load_le32(const unsigned char *p)
{
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

inline void store_le32(unsigned char *p, uint32_t v)
{
    for (size_t i = 0; i < 4; i++)
        p[i] = static_cast<unsigned char>(v >> (8 * i));
}

} // namespace vesk
