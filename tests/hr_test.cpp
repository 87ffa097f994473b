#include <gtest/gtest.h>

#include "vesk_hr.h"

namespace {

TEST(Hr, U64)
{
    const struct { unsigned long long val, unit; const char *text; } cases[] = { // unit 0: steps of 1024 with a letter
        {1023, 0, "1023"}, {1024, 0, "1.0k"}, {1076, 0, "1.1k"}, {2047, 0, "2.0k"}, // 2047: the tenth carries
        {1048575, 0, "1024.0k"}, // the carry reaches 1024 and the unit stays
        {1048576, 0, "1.0M"}, {18446744073709551615ull, 0, "16777216.0T"}, // no letter above T
        {0, 0, "0"}, {1499, 1000, "1"}, {1500, 1000, "2"}, {18446744073709551615ull, 1, "18446744073709551615"},
        {18446744073709551615ull, 2, "0"}, // val + unit/2 wraps
    };
    for (const auto &c : cases)
        EXPECT_STREQ(vesk_hr_u64_to_str(c.val, c.unit), c.text) << c.val << "/" << c.unit;
}

TEST(Hr, U32InGroupsOfThree)
{
    const struct { unsigned int val; const char *text; } cases[] = {
        {4294967295u, "4,294,967,295"}, {0, "0"}, {999, "999"}, {1000, "1,000"}, {1000005, "1,000,005"},
        {1005007000, "1,005,007,000"}, {5, "5"}, // nothing of the longer text before it is left
    };
    for (const auto &c : cases)
        EXPECT_STREQ(vesk_hr_u32_to_str(c.val), c.text) << c.val;
}

TEST(Hr, PacketBytesInStepsOf1000)
{
    const struct { unsigned long long val; const char *text; } cases[] = {
        {0, "0 Bytes"}, {999, "999 Bytes"}, {1099, "1.0 KBytes"}, {999999, "999.9 KBytes"}, {1000000, "1.0 MBytes"},
        {2005000, "2.0 MBytes"}, {1999999999, "1.9 GBytes"}, // cut, not rounded
        {18446744073709551615ull, "18446744073.7 GBytes"},   // beyond 999 GBytes the count keeps all its digits
    };
    for (const auto &c : cases)
        EXPECT_STREQ(vesk_parse_pkt_unit(c.val), c.text) << c.val;
}

} // namespace
