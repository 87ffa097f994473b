// Seeding rand() from the kernel's random pool.
#pragma once

#include <stdio.h>
#include <stdlib.h>

#include "core/unique.hpp"

namespace vesk {

// Seeds rand() with a 4-byte word of /dev/urandom (0 when it yields fewer).
// False, with rand() left alone, when the pool cannot be opened.
inline bool seed_from_pool()
{
    unique_file pool = open_file("/dev/urandom", "r");
    if (!pool)
        return false;
    unsigned int seed = 0; // a short read seeds with 0 rather than stack garbage
    if (fread(&seed, sizeof seed, 1, pool.get()) != 1)
        seed = 0;
    srand(seed);
    return true;
}

} // namespace vesk
