#include <gtest/gtest.h>

#include <string.h>

#include "vesk_hr.h"

namespace {

TEST(Hr, U64InStepsOf1024)
{
    const struct {
        unsigned long long val;
        const char *text;
    } cases[] = {
        {1, "1"},
        {1023, "1023"},
        {1024, "1.0k"},
        {1075, "1.0k"}, // 51/1024 of a step rounds down
        {1076, "1.1k"}, // 52/1024 rounds up
        {1536, "1.5k"},
        {2047, "2.0k"},       // the tenth rounds up to 10 and carries
        {1048575, "1024.0k"}, // the carry reaches 1024 and the unit stays
        {1048576, "1.0M"},
        {1572864, "1.5M"},
        {1073741824, "1.0G"},
        {1099511627776ull, "1.0T"},
        {1125899906842624ull, "1024.0T"}, // no letter above T
        {18446744073709551615ull, "16777216.0T"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.val);
        EXPECT_STREQ(vesk_hr_u64_to_str(c.val, 0), c.text);
    }
}

TEST(Hr, U64WithAFixedUnitRoundsHalfUp)
{
    const struct {
        unsigned long long val, unit;
        const char *text;
    } cases[] = {
        {1499, 1000, "1"},
        {1500, 1000, "2"},
        {7, 3, "2"},
        {0, 1000, "0"},
        {1, 1000, "0"},
        {18446744073709551615ull, 1, "18446744073709551615"},
        {18446744073709551615ull, 2, "0"}, // val + unit/2 wraps
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.val << "/" << c.unit);
        EXPECT_STREQ(vesk_hr_u64_to_str(c.val, c.unit), c.text);
    }
}

TEST(Hr, U64ZeroIsAConstantAndLeavesTheBuffer)
{
    const char *buf = vesk_hr_u64_to_str(1536, 0);
    const char *zero = vesk_hr_u64_to_str(0, 0);
    EXPECT_STREQ(zero, "0");
    EXPECT_NE(zero, buf);
    EXPECT_STREQ(buf, "1.5k");
    EXPECT_EQ(vesk_hr_u64_to_str(1024, 0), buf); // the next call overwrites
    EXPECT_STREQ(buf, "1.0k");
}

TEST(Hr, U32InGroupsOfThree)
{
    const struct {
        unsigned int val;
        const char *text;
    } cases[] = {
        {0, "0"},
        {7, "7"},
        {999, "999"},
        {1000, "1,000"},
        {1001, "1,001"},
        {100000, "100,000"},
        {1000005, "1,000,005"},
        {1234567, "1,234,567"},
        {1000000000, "1,000,000,000"},
        {1005007000, "1,005,007,000"},
        {4294967295u, "4,294,967,295"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.val);
        EXPECT_STREQ(vesk_hr_u32_to_str(c.val), c.text);
    }
    // A shorter text after a longer one leaves nothing of the old behind.
    vesk_hr_u32_to_str(4294967295u);
    EXPECT_STREQ(vesk_hr_u32_to_str(5), "5");
}

TEST(Hr, PacketBytesInStepsOf1000)
{
    const struct {
        unsigned long long val;
        const char *text;
    } cases[] = {
        {0, "0 Bytes"},
        {999, "999 Bytes"},
        {1000, "1.0 KBytes"},
        {1099, "1.0 KBytes"},
        {1234, "1.2 KBytes"},
        {999999, "999.9 KBytes"},
        {1000000, "1.0 MBytes"},
        {1000999, "1.0 MBytes"},
        {2005000, "2.0 MBytes"},
        {1000000000, "1.0 GBytes"},
        {1999999999, "1.9 GBytes"}, // cut, not rounded
        {1000000001, "1.0 GBytes"},
        {999999999999ull, "999.9 GBytes"},
        // Beyond 999 GBytes the count keeps all its digits.
        {1000000000000ull, "1000.0 GBytes"},
        {1234567890123ull, "1234.5 GBytes"},
        {18446744073709551615ull, "18446744073.7 GBytes"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.val);
        EXPECT_STREQ(vesk_parse_pkt_unit(c.val), c.text);
    }
}

} // namespace
