// Numbers as short text: binary steps with a letter, grouped digits, and
// byte counts in decimal steps with a unit word.
#include "vesk_hr.h"

#include <stdio.h>

#include <array>

namespace {

constexpr char kHrUnits[] = "kMGT";
constexpr int kHrMaxSteps = sizeof kHrUnits - 1;

// The first word is for a count below 1000, then one per step of 1000.
constexpr std::array<const char *, 4> kPktUnits = {"Bytes", "KBytes", "MBytes", "GBytes"};

char hr_u64_buffer[21];
char hr_u32_buffer[80];
char pkt_unit_buffer[80];

} // namespace

extern "C" {

const char *vesk_hr_u64_to_str(unsigned long long val, unsigned long long unit)
{
    if (val == 0)
        return "0";
    if (unit != 0) {
        // Half up; the sum wraps at 2^64 like the device's arithmetic.
        snprintf(hr_u64_buffer, sizeof hr_u64_buffer, "%llu", (val + unit / 2) / unit);
        return hr_u64_buffer;
    }
    int steps = 0;
    int tenth = 0;
    while (val >= 1024 && steps < kHrMaxSteps) {
        tenth = static_cast<int>(((val % 1024) * 10 + 512) / 1024);
        val /= 1024;
        steps++;
    }
    // A tenth rounded up to 10 carries once; the value is not scaled again,
    // so 1048575 reads "1024.0k".
    if (tenth == 10) {
        val++;
        tenth = 0;
    }
    if (steps == 0)
        snprintf(hr_u64_buffer, sizeof hr_u64_buffer, "%llu", val);
    else
        snprintf(hr_u64_buffer, sizeof hr_u64_buffer, "%llu.%d%c", val, tenth, kHrUnits[steps - 1]);
    return hr_u64_buffer;
}

char *vesk_hr_u32_to_str(unsigned int val)
{
    const unsigned int groups[] = {val / 1000000000u, val / 1000000u % 1000, val / 1000u % 1000, val % 1000};
    constexpr int kUnits = 3;
    int first = 0;
    while (first < kUnits && groups[first] == 0)
        first++;
    size_t len = 0;
    for (int i = first; i <= kUnits; i++) {
        const char *format = i == first ? (i == kUnits ? "%u" : "%u,") : (i == kUnits ? "%03u" : "%03u,");
        len += static_cast<size_t>(snprintf(hr_u32_buffer + len, sizeof hr_u32_buffer - len, format, groups[i]));
    }
    return hr_u32_buffer;
}

char *vesk_parse_pkt_unit(unsigned long long val)
{
    // G is not taken modulo 1000: a count of 10^12 bytes and more stays in
    // GBytes with all its digits rather than losing its top.
    const unsigned long long g = val / 1000000000ull;
    const unsigned int m = static_cast<unsigned int>(val / 1000000ull % 1000);
    const unsigned int k = static_cast<unsigned int>(val / 1000ull % 1000);
    const unsigned int b = static_cast<unsigned int>(val % 1000);
    if (g != 0)
        snprintf(pkt_unit_buffer, sizeof pkt_unit_buffer, "%llu.%u %s", g, m / 100, kPktUnits[3]);
    else if (m != 0)
        snprintf(pkt_unit_buffer, sizeof pkt_unit_buffer, "%u.%u %s", m, k / 100, kPktUnits[2]);
    else if (k != 0)
        snprintf(pkt_unit_buffer, sizeof pkt_unit_buffer, "%u.%u %s", k, b / 100, kPktUnits[1]);
    else
        snprintf(pkt_unit_buffer, sizeof pkt_unit_buffer, "%u %s", b, kPktUnits[0]);
    return pkt_unit_buffer;
}

} // extern "C"
