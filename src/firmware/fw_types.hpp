// The image types the device knows. The position in the table is the type
// index handed to the upgrade; the name is both the type's print name and
// the flash partition it is written to.
#pragma once

#include <stdint.h>

#include <array>

namespace vesk::fw {

struct fw_type {
    uint32_t type;
    const char *name;
};

inline constexpr std::array<fw_type, 5> fw_type_table = {{
    {1, "Bootloader"},
    {3, "Kernel"},
    {11, "factoryapps"},
    {7, "userconfig"},
    {13, "langpack"},
}};

inline constexpr uint32_t kTypeKernel = 3;
inline constexpr uint32_t kTypeUserConfig = 7;

// Position of type in fw_type_table, or -1.
constexpr int fw_type_index(uint32_t type)
{
    for (size_t i = 0; i < fw_type_table.size(); i++)
        if (fw_type_table[i].type == type)
            return static_cast<int>(i);
    return -1;
}

static_assert(fw_type_index(kTypeKernel) == 1 && fw_type_index(kTypeUserConfig) == 3);
static_assert(fw_type_index(5) == -1);

} // namespace vesk::fw
