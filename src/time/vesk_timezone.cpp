// Time zones: the zone number and the store's daylight-saving dates become
// a POSIX zone text in /etc/TZ; the clock is set through the date tool.
#include <stdint.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <span>

#include "core/command.hpp"
#include "quil.h"
#include "sysapi.h"
#include "vesk_string.h"
#include "vesk_time.h"

namespace {

constexpr const char *kTzFile = "/etc/TZ";
constexpr size_t kCommandSize = 80;

struct time_zone_row {
    int32_t index;
    const char *std_zone;
    const char *dst_zone; // one hour east of std_zone
};

// POSIX signs: "UTC+12" lies twelve hours behind UTC. Neighbouring numbers
// often share a pair; what a number means to the user lies with the pages.
constexpr time_zone_row vesk_time_zone_table[] = {
    {0, "UTC+12", "UTC+11"},
    {1, "UTC+11", "UTC+10"},
    {2, "UTC+10", "UTC+9"},
    {3, "UTC+9", "UTC+8"},
    {4, "UTC+8", "UTC+7"},
    {5, "UTC+7", "UTC+6"},
    {6, "UTC+7", "UTC+6"},
    {7, "UTC+7", "UTC+6"},
    {8, "UTC+6", "UTC+5"},
    {9, "UTC+6", "UTC+5"},
    {10, "UTC+6", "UTC+5"},
    {11, "UTC+6", "UTC+5"},
    {12, "UTC+5", "UTC+4"},
    {13, "UTC+5", "UTC+4"},
    {14, "UTC+5", "UTC+4"},
    {15, "UTC+4", "UTC+3"},
    {16, "UTC+4", "UTC+3"},
    {17, "UTC+4", "UTC+3"},
    {18, "UTC+3:30", "UTC+2:30"},
    {19, "UTC+3", "UTC+2"},
    {20, "UTC+3", "UTC+2"},
    {21, "UTC+3", "UTC+2"},
    {22, "UTC+2", "UTC+1"},
    {23, "UTC+1", "UTC+0"},
    {24, "UTC+1", "UTC+0"},
    {25, "UTC+0", "UTC-1"},
    {26, "UTC+0", "UTC-1"},
    {27, "UTC-1", "UTC-2"},
    {28, "UTC-1", "UTC-2"},
    {29, "UTC-1", "UTC-2"},
    {30, "UTC-1", "UTC-2"},
    {31, "UTC-1", "UTC-2"},
    {32, "UTC-2", "UTC-3"},
    {33, "UTC-2", "UTC-3"},
    {34, "UTC-2", "UTC-3"},
    {35, "UTC-2", "UTC-3"},
    {36, "UTC-2", "UTC-3"},
    {37, "UTC-2", "UTC-3"},
    {38, "UTC-3", "UTC-4"},
    {39, "UTC-3", "UTC-4"},
    {40, "UTC-3", "UTC-4"},
    {41, "UTC-3", "UTC-4"},
    {42, "UTC-3:30", "UTC-4:30"},
    {43, "UTC-3:30", "UTC-4:30"},
    {44, "UTC-4", "UTC-5"},
    {45, "UTC-4", "UTC-5"},
    {46, "UTC-4:30", "UTC-5:30"},
    {47, "UTC-5", "UTC-6"},
    {48, "UTC-5", "UTC-6"},
    {49, "UTC-5:30", "UTC-6:30"},
    {50, "UTC-5:45", "UTC-6:45"},
    {51, "UTC-6", "UTC-7"},
    {52, "UTC-6", "UTC-7"},
    {53, "UTC-6", "UTC-7"},
    {54, "UTC-6:30", "UTC-7:30"},
    {55, "UTC-7", "UTC-8"},
    {56, "UTC-7", "UTC-8"},
    {57, "UTC-8", "UTC-9"},
    {58, "UTC-8", "UTC-9"},
    {59, "UTC-8", "UTC-9"},
    {60, "UTC-8", "UTC-9"},
    {61, "UTC-8", "UTC-9"},
    {62, "UTC-9", "UTC-10"},
    {63, "UTC-9", "UTC-10"},
    {64, "UTC-9", "UTC-10"},
    {65, "UTC-9:30", "UTC-10:30"},
    {66, "UTC-9:30", "UTC-10:30"},
    {67, "UTC-10", "UTC-11"},
    {68, "UTC-10", "UTC-11"},
    {69, "UTC-10", "UTC-11"},
    {70, "UTC-10", "UTC-11"},
    {71, "UTC-10", "UTC-11"},
    {72, "UTC-11", "UTC-12"},
    {73, "UTC-12", "UTC-13"},
    {74, "UTC-12", "UTC-13"},
    {75, "UTC-13", "UTC-14"},
    {static_cast<int32_t>(0x80000001), "NONE", nullptr},
};
constexpr unsigned int kZoneCount = std::size(vesk_time_zone_table) - 1; // the closing row is no zone
static_assert(kZoneCount == 76);

constexpr bool rows_numbered_by_position()
{
    for (unsigned int i = 0; i < kZoneCount; i++)
        if (vesk_time_zone_table[i].index != static_cast<int32_t>(i) || !vesk_time_zone_table[i].dst_zone)
            return false;
    return true;
}
static_assert(rows_numbered_by_position());

// The longest command: both zone texts and two day numbers of 3 digits.
constexpr size_t longest_command()
{
    size_t zones = 0;
    for (unsigned int i = 0; i < kZoneCount; i++)
        zones = std::max(zones, std::char_traits<char>::length(vesk_time_zone_table[i].std_zone) +
                                    std::char_traits<char>::length(vesk_time_zone_table[i].dst_zone));
    return std::char_traits<char>::length("echo ,365/00:00:00,365/23:59:59 > /etc/TZ") + zones;
}
static_assert(longest_command() < 60 && longest_command() < kCommandSize);

// The store's "timedaylight" record: 9 bytes without gaps, 16-bit fields in
// little-endian order.
constexpr size_t kDaylightRecordSize = 9;
constexpr size_t kEnableOffset = 0;
constexpr size_t kStartMonthOffset = 1;
constexpr size_t kStartDayOffset = 3;
constexpr size_t kEndMonthOffset = 5;
constexpr size_t kEndDayOffset = 7;
static_assert(kEndDayOffset + sizeof(int16_t) == kDaylightRecordSize);

struct daylight_saving {
    bool enable;
    int start_month, start_day, end_month, end_day;
};

int16_t load_le16(std::span<const uint8_t, kDaylightRecordSize> rec, size_t offset)
{
    return static_cast<int16_t>(rec[offset] | rec[offset + 1] << 8);
}

daylight_saving parse_daylight(std::span<const uint8_t, kDaylightRecordSize> rec)
{
    return {rec[kEnableOffset] != 0, load_le16(rec, kStartMonthOffset), load_le16(rec, kStartDayOffset),
            load_le16(rec, kEndMonthOffset), load_le16(rec, kEndDayOffset)};
}

bool in_range(int v, int lo, int hi) { return v >= lo && v <= hi; }

} // namespace

extern "C" {

int vesk_set_time_zone(unsigned int index)
{
    std::array<uint8_t, kDaylightRecordSize> rec = {};
    char zone[kCommandSize] = {};
    quil_get_value(rec.data(), "timedaylight");

    if (index >= kZoneCount) {
        T_PRINTF("Error: %s time zone index (%d) not in range \n", __func__, static_cast<int>(index));
        return 0;
    }
    // Checked even when daylight saving is off: an unset record refuses.
    const daylight_saving dst = parse_daylight(rec);
    if (!in_range(dst.start_day, 1, 31) || !in_range(dst.end_day, 1, 31) || !in_range(dst.start_month, 1, 12) ||
        !in_range(dst.end_month, 1, 12)) {
        T_PRINTF("Error: %s date is not in range \n", __func__);
        return 0;
    }

    vesk::cmd::run(__func__, "rm -rf %s", kTzFile);
    const time_zone_row &row = vesk_time_zone_table[index];
    vesk_strcat(zone, "%s", row.std_zone);
    if (dst.enable) {
        // Day numbers of a leap year without the J letter: POSIX counts the
        // leap day, so in a common year a date after February falls a day
        // later than the record says.
        vesk_strcat(zone, "%s,%d/%s,%d/%s", row.dst_zone, date_to_non_zero_julian_day(dst.start_month, dst.start_day),
                    "00:00:00", date_to_non_zero_julian_day(dst.end_month, dst.end_day), "23:59:59");
    }
    vesk::cmd::run(__func__, "echo %s > %s", zone, kTzFile);
    return 1;
}

int vesk_set_date_time(const struct tm *t, int utc)
{
    if (!t) {
        T_PRINTF("Error: %s, input is NULL!\n", __func__);
        return 0;
    }
    // Month, day, hour, minute, year: the order the date tool takes.
    if (utc)
        vesk::cmd::run(__func__, "date %02d%02d%02d%02d%04d -u", t->tm_mon, t->tm_mday, t->tm_hour, t->tm_min, t->tm_year);
    else // the blank at the end is the empty last word of the device's command
        vesk::cmd::run(__func__, "date %02d%02d%02d%02d%04d ", t->tm_mon, t->tm_mday, t->tm_hour, t->tm_min, t->tm_year);
    usleep(200);
    return 1;
}

} // extern "C"
