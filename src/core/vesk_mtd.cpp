// Flash partitions by name from /proc/mtd, and UUIDs from the board MAC.
#include "core/command.hpp"
#include "vesk_mtd.h"

#include <stdio.h>
#include <string.h>

#include <array>

#include "core/line_reader.hpp"
#include "core/unique.hpp"
#include "sysapi.h"
#include "vesk_mac.h"

namespace {

constexpr size_t kMtdLine = 128;
constexpr size_t kMtdNameMax = 31; // the partition table's name field

using mac_bytes = std::array<unsigned char, 6>;

// The board's MAC when its tool cannot be run.
constexpr mac_bytes kFallbackMac = {0x00, 0xAA, 0xBB, 0xCC, 0xDD, 0x10};
constexpr const char *kFallbackWlanUuid = "18de43f8-677c-4d3a-8920-00aabbccdd10";

char uuid_buffer[80];
char wlan_uuid_buffer[80];

// The board MAC, read through the function's own buffer, which is left zeroed.
mac_bytes board_mac(char (&buf)[80])
{
    mac_bytes mac = kFallbackMac;
    // A tool that ran and failed prints nothing useful either: keep the fallback.
    // Text that is no MAC gives six zero bytes.
    if (vesk::cmd::capture(__func__, buf, "board_config get ethaddr") > 0)
        vesk_mac_str_2_bin(mac.data(), buf);
    memset(buf, 0, sizeof buf);
    return mac;
}

} // namespace

extern "C" {

int vesk_get_mtd_by_name(const char *name, int *index, int *size)
{
    if (!name) {
        T_PRINTF("%s: inMtdName = NULL!\n", __func__);
        return -1;
    }
    if (index)
        *index = -1;
    vesk::unique_file mtd = vesk::open_file("/proc/mtd", "r");
    if (!mtd)
        return -1;

    char line[kMtdLine];
    for (int count = 0; vesk::read_line(mtd.get(), line); count++) {
        if (count == 0)
            continue; // the header
        // The taken word cannot outgrow the line it comes from.
        char part[kMtdLine] = {};
        if (sscanf(line, "%*s %*s %*s \"%127s", part) != 1)
            continue;
        size_t len = strlen(part);
        if (len && part[len - 1] == '"')
            part[--len] = '\0';
        if (len > kMtdNameMax || strcmp(part, name) != 0)
            continue;
        if (index)
            *index = count - 1;
        unsigned int bytes;
        if (size && sscanf(line, "%*s %x", &bytes) == 1)
            *size = static_cast<int>(bytes);
        return count - 1;
    }
    if (size)
        *size = 0;
    return -1;
}

char *vesk_get_uuid_by_wlan_mac(int which)
{
    mac_bytes mac = board_mac(wlan_uuid_buffer);
    if (which == 1)
        mac[5] = static_cast<unsigned char>(mac[5] + 1);
    if (vesk::cmd::capture(__func__, wlan_uuid_buffer, "uuidgen -m %02X%02X%02X%02X%02X%02X", mac[0], mac[1], mac[2],
                           mac[3], mac[4], mac[5]) <= 0) {
        memset(wlan_uuid_buffer, 0, sizeof wlan_uuid_buffer);
        strcpy(wlan_uuid_buffer, kFallbackWlanUuid);
    }
    return wlan_uuid_buffer;
}

char *vesk_get_uuid(void)
{
    mac_bytes mac = board_mac(uuid_buffer);
    snprintf(uuid_buffer, sizeof uuid_buffer, "f0015eb6-69b9-436e-a383-%02x%02x%02x%02x%02x%02x", mac[0], mac[1],
             mac[2], mac[3], mac[4], mac[5]);
    return uuid_buffer;
}

} // extern "C"
