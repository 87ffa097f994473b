#include <gtest/gtest.h>

#include <array>
#include <string>

#include "exact_copy.hpp"
#include "output_of.hpp"
#include "vesk_mac.h"

namespace {

using mac = std::array<unsigned char, 6>;

TEST(Mac, BinaryToText)
{
    const mac bin = {0x00, 0x1A, 0x2B, 0xC3, 0xFF, 0x5E};
    char dst[18];
    memset(dst, 'x', sizeof dst);
    EXPECT_EQ(vesk_mac_bin_2_str(dst, bin.data()), 17);
    EXPECT_STREQ(dst, "00:1A:2B:C3:FF:5E");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mac_bin_2_str(nullptr, bin.data()), 0); }),
              "Error! vesk_mac_bin_2_str dst_str is null!\n");
}

TEST(Mac, TextToBinary)
{
    const mac zero{}, plain{0x00, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
    const struct { std::string text; int result; mac bin; } cases[] = {
        {"00:1a:2b:3c:4d:5e", 1, plain}, {"00:1A:2B:3C:4D:5E:FF", 1, plain}, {"00:1A:2B:3C:4D", 0, zero},
        {std::string(68, ':') + "001A2B3C4D5E", 0, zero}, // colons fill up the work area too: 80 do not fit
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        exact_copy text(c.text);
        mac bin;
        bin.fill(0x77);
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mac_str_2_bin(bin.data(), text), c.result); }), "");
        EXPECT_EQ(bin, c.bin);
        EXPECT_EQ(std::string(text), c.text); // the caller's text is not changed
    }
    mac bin = {7, 7, 7, 7, 7, 7};
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mac_str_2_bin(bin.data(), nullptr), 0); }),
              "Error! vesk_mac_str_2_bin input is NULL!\n");
    EXPECT_EQ(bin, (mac{7, 7, 7, 7, 7, 7}));
}

TEST(Mac, AddColon)
{
    const struct { const char *text, *after; int result; } cases[] = {
        {"001a2b3c4d5e", "00:1a:2b:3c:4d:5e", 1}, {"00:1a:2b:3c:4d:5e", "00:1a:2b:3c:4d:5e", 0},
        {"001a2b3c4d5", "001a2b3c4d5", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        char buf[18 + 1];
        memset(buf, '#', sizeof buf);
        strcpy(buf, c.text);
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mac_add_colon(buf), c.result); }),
                  c.result ? "" : "Error! vesk_mac_add_colon, macstr len is invalied\n");
        EXPECT_STREQ(buf, c.after);
        EXPECT_EQ(buf[18], '#'); // nothing written behind the 18 bytes
    }
}

TEST(Mac, ValidText)
{
    const struct { std::string text; int result; bool len_message; } cases[] = {
        {"00:1A:2B:3C:4D:5E", 1, false}, {"\x80" "0:1A:2B:3C:4D:5E", 0, false}, // only length and 7-bit text count
        {"00:1A:2B:3C:4D:5\x7F", 1, false}, {"00:1A:2B:3C:4D", 0, true}, {std::string(68, ':') + "001A2B3C4D5E", 0, true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        exact_copy text(c.text);
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mac_is_valid_str(text), c.result); }),
                  c.len_message ? "vesk_mac_is_valid_str: mac_str[" + c.text + "] len error!\n" : "");
    }
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_mac_is_valid_str(nullptr), 0); }),
              "vesk_mac_is_valid_str: input is NULL!\n");
}

TEST(Mac, Equality)
{
    const mac a{1, 2, 3, 4, 5, 6};
    const mac same = a; // the same address in another array
    EXPECT_EQ(vesk_mac_bin_is_equal(a.data(), same.data()), 1);
    for (int i = 0; i < 6; i++) {
        mac b = a;
        b[i] ^= 0x80;
        EXPECT_EQ(vesk_mac_bin_is_equal(a.data(), b.data()), 0) << i;
    }
    EXPECT_EQ(stderr_of([&] {
                  EXPECT_EQ(vesk_mac_bin_is_equal(nullptr, a.data()) + vesk_mac_bin_is_equal(a.data(), nullptr), 0);
              }), "vesk_mac_bin_is_equal: input error!\nvesk_mac_bin_is_equal: input error!\n");
}

TEST(Mac, InRange)
{
    const struct { const char *b1, *b2, *mac; int result; const char *message; } cases[] = {
        {"00:11:22:33:44:00", "00:11:22:33:44:FF", "00:11:22:33:44:55", 1, ""},
        {"00:11:22:33:44:FF", "00:11:22:33:44:00", "00:11:22:33:44:55", 1, ""},
        {"00:11:22:33:44:00", "00:11:22:33:44:FF", "00:11:22:33:44:00", 1, ""},
        {"00:11:22:33:44:00", "00:11:22:33:44:FF", "00:11:22:33:44:FF", 1, ""},
        {"00:11:22:33:44:55", "00:11:22:33:44:55", "00:11:22:33:44:56", 0, ""},
        {"00:11:22:33:44:01", "00:11:22:33:44:FF", "00:11:22:33:44:00", 0, ""},
        {"7F:FF:FF:FF:FF:FF", "FF:FF:FF:FF:FF:FF", "80:00:00:00:00:00", 1, ""}, // unsigned
        {"00:00:00:00:00:00", "00:00:00:00:00:01", "ZZZZZZZZZZZZ", 1, ""},     // counts as zero
        // The first text that fails the check ends the test, after its message.
        {"00:11:22:33:44:00", nullptr, "00:11", 0,
         "vesk_mac_is_valid_str: input is NULL!\nvesk_mac_is_in_range_str: input is incorrect!\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.b1) + " " + (c.b2 ? c.b2 : "(null)") + " " + c.mac);
        exact_copy b1(c.b1), b2(c.b2 ? c.b2 : ""), m(c.mac);
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mac_is_in_range_str(b1, c.b2 ? b2.get() : nullptr, m), c.result); }),
                  c.message);
    }
}

} // namespace
