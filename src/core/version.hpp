// Version numbers: "major.minor.patch" as major * 10000 + minor * 100 + patch.
#pragma once

#include <stdint.h>
#include <stdio.h>

namespace vesk {

// The number of a version text; numbers the text does not hold count as 0.
// fields, when given, receives how many numbers were read (sscanf's count).
inline uint32_t version_number(const char *text, int *fields = nullptr)
{
    unsigned int major = 0, minor = 0, patch = 0;
    int n = sscanf(text, "%u.%u.%u", &major, &minor, &patch);
    if (fields)
        *fields = n;
    return major * 10000u + minor * 100u + patch;
}

} // namespace vesk
