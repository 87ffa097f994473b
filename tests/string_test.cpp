#include <gtest/gtest.h>

#include <string>

#include "exact_copy.hpp"
#include "output_of.hpp"
#include "vesk_string.h"

namespace {

TEST(Text, RegMatchSearchesUnanchored)
{
    const std::string long_text = std::string(200, 'x') + "needle"; // a match behind the 80th byte counts
    const std::string long_ab(256, 'a'), huge_ab(10000, 'b');
    const char *null = "Err: function vesk_reg_match, input is NULL!\n";
    const struct { const char *pattern, *text; int result; const char *message; } cases[] = {
        {"a", "ba", 1, ""}, {"^a", "ba", 0, ""}, {"needle$", long_text.c_str(), 1, ""},
        {"^br[0-9]+$", "br0\n", 1, ""}, // PCRE's $ allows a final newline
        // More groups than the offset vector holds: pcre_exec returns 0, a match.
        {"(a)(b)(c)(d)(e)(f)(g)(h)(i)(j)(k)", "abcdefghijk", 1, ""},
        {"(", "x", 0, "PCRE compilation failed at offset 1: missing )\n"},
        {nullptr, "x", 0, null}, {"x", nullptr, 0, null},
        // Recursion is bounded: a long field ends in no match, not a stack overflow.
        {"^(a|b)*$", long_ab.c_str(), 1, ""}, {"^(a|b)*$", huge_ab.c_str(), 0, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.pattern ? c.pattern : "(null)");
        exact_copy text(c.text ? c.text : "");
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_reg_match(c.pattern, c.text ? text.get() : nullptr), c.result); }),
                  c.message);
    }
}

TEST(Text, HexdumpLines)
{
    auto hexdump = [](unsigned int base, const void *data, unsigned int len) {
        return stdout_of([&] { vesk_dbg_hexdump(base, data, len); });
    };
    // A short line's filler is narrower than the byte groups it stands for:
    // three blanks on odd columns, two on even.
    const unsigned char bytes[] = "ABCDEFGHIJKLMNOPQ";
    EXPECT_EQ(hexdump(0x100, bytes, 17),
              "00000100: 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50  |ABCDEFGHIJKLMNOP|\n"
              "00000110: 51 " + std::string(38, ' ') + " |Q|\n");
    const unsigned char odd[] = {0x00, 0x7F, 0x80};
    EXPECT_EQ(hexdump(0, odd, 3), "00000000: 00 7F 80 " + std::string(33, ' ') + " |...|\n");
    EXPECT_EQ(hexdump(0, nullptr, 10) + hexdump(0, bytes, 0), "");
    EXPECT_EQ(hexdump(0xFFFFFFF8u, bytes, 16).substr(0, 10), "fffffff8: "); // 32-bit offset
}

TEST(Text, RemoveAndReplaceChar)
{
    const struct { const char *text; char c; const char *after; int count; } removes[] = {
        {"11:22:33", ':', "112233", 2}, {":::", ':', "", 3}, {"abc", 'x', "abc", 0}, {"", ':', "", 0},
        {"a\xff" "b\xff", '\xff', "ab", 2}};
    for (const auto &c : removes) {
        exact_copy text(c.text);
        EXPECT_EQ(vesk_string_remove_char(text, c.c), c.count) << c.text;
        EXPECT_STREQ(text, c.after);
    }
    exact_copy dotted("log_2024.01.txt");
    EXPECT_EQ(vesk_string_replace_char(dotted, '.', ' '), 2);
    EXPECT_STREQ(dotted, "log_2024 01 txt");
    EXPECT_EQ(vesk_string_replace_char(dotted, '#', '-'), 0);
    EXPECT_EQ(vesk_string_remove_char(nullptr, 'a') + vesk_string_replace_char(nullptr, 'a', 'b'), 0);
}

TEST(Text, CharacterValues)
{
    const struct { char c; int value; } cases[] = {
        {'0', 0}, {'9', 9}, {'a', 10}, {'A', 10}, {'f', 15}, {'g', 16}, {'z', 35}, {'Z', 35}, {'-', -1},
        {'\0', -1}, {'\xe9', -1}, {'/', -1}, {':', -1}, {'@', -1}, {'[', -1}, {'`', -1}, {'{', -1}};
    for (const auto &c : cases)
        EXPECT_EQ(vesk_char_to_int(c.c), c.value) << static_cast<int>(c.c);
}

TEST(Text, SkipWhitespaceAndLastCharacter)
{
    const struct { const char *text; size_t skipped; } skips[] = {{"\n x", 0}, {" \t x", 3}, {"   ", 3}, {"", 0}};
    for (const auto &c : skips) {
        exact_copy text(c.text);
        EXPECT_EQ(vesk_char_skip_whitespace(text), text.get() + c.skipped) << '"' << c.text << '"';
    }
    EXPECT_EQ(vesk_char_skip_whitespace(nullptr), nullptr);
    exact_copy slash("/tmp/");
    EXPECT_EQ(vesk_char_last_is(slash, '/'), slash.get() + 4);
    EXPECT_EQ(vesk_char_last_is(slash, 'p'), nullptr);
    EXPECT_EQ(vesk_char_last_is("", '\0'), nullptr);
    EXPECT_EQ(vesk_char_last_is(nullptr, '/'), nullptr);
}

TEST(Text, LastPathComponent)
{
    const struct { const char *path, *nostrip, *strip, *stripped; } cases[] = { // stripped: the caller's string afterwards
        {"/", "/", "/", "/"}, {"a/", "", "a", "a"}, {"/a/b", "b", "b", "/a/b"}, {"/a/b//", "", "b", "/a/b"},
        {"///", "", "/", "/"}, {"name", "name", "name", "name"}, {"", "", "", ""}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.path);
        exact_copy a(c.path), b(c.path);
        EXPECT_STREQ(vesk_string_get_last_path_component_nostrip(a), c.nostrip);
        EXPECT_STREQ(a, c.path);
        char *got = vesk_string_get_last_path_component_strip(b);
        EXPECT_STREQ(got, c.strip);
        EXPECT_STREQ(b, c.stripped);
        EXPECT_TRUE(got >= b.get() && got <= b.get() + strlen(c.path)); // points into path
    }
    EXPECT_EQ(vesk_string_get_last_path_component_nostrip(nullptr), nullptr);
    EXPECT_EQ(vesk_string_get_last_path_component_strip(nullptr), nullptr);
}

TEST(Text, StrcatAppendsFormattedText)
{
    char dst[4096] = "ifconfig";
    EXPECT_EQ(vesk_strcat(dst, " %s %d.%d", "br0", 192, 0), dst);
    EXPECT_STREQ(dst, "ifconfig br0 192.0");
    EXPECT_EQ(vesk_strcat(nullptr, "%d", 1), nullptr);
    dst[0] = '\0'; // one call appends at most 2047 characters
    vesk_strcat(dst, "%s", std::string(3000, 'y').c_str());
    EXPECT_EQ(strlen(dst), 2047u);
}

TEST(Text, Itoa)
{
    const struct { int value, base; const char *text; } cases[] = {
        {0, 10, ""}, {255, 16, "ff"}, {5, 2, "101"}, {0x7FFFFFFF, 16, "7fffffff"},
        {0x7FFFFFFF, 2, "111111111111111111111111111111"}, // lowest 30 of 31 digits
        {-1, 16, "ffffffff"}, {-1, 10, "4294967295"},       // no sign: the 32-bit pattern
        {35, 17, ""}, {35, 1, ""},                          // bases outside 2..16 give no digits
    };
    for (const auto &c : cases)
        EXPECT_STREQ(vesk_itoa(c.value, c.base), c.text) << c.value << " base " << c.base;
}

TEST(Text, UrlCompare)
{
    const struct { std::string a, b; int sign; } cases[] = {
        {"HTTP://A", "http://a", 0}, {"http://a/", "http://a", 1}, {"abc", "abd", -1}, {"", "", 0},
        {"\xc4", "\xe4", -1}, {"z", "\x80", -1}, // only ASCII is lower-cased; bytes compare unsigned
        // Long texts are compared whole, both ways.
        {std::string(300, 'a') + "b", std::string(300, 'a') + "c", -1},
        {std::string(200, 'a'), std::string(201, 'a'), -1},
    };
    for (const auto &c : cases) {
        exact_copy a(c.a), b(c.b);
        int got = vesk_url_cmp(a, b), back = vesk_url_cmp(b, a);
        EXPECT_EQ((got > 0) - (got < 0), c.sign) << c.a.size() << ' ' << c.b.size();
        EXPECT_EQ((back > 0) - (back < 0), -c.sign);
    }
    EXPECT_EQ(std::make_pair(vesk_url_cmp(nullptr, ""), vesk_url_cmp(nullptr, "a") < 0), std::make_pair(0, true));
}

TEST(Text, RemoveCrlf)
{
    const struct { const char *text, *after; } cases[] = {
        {"x\r\n", "x"}, {"\n", ""}, {"x\r", "x\r"}, {"x\n\n", "x\n"}, {"\r\n", ""}, {"", ""}, {"x\r\r\n", "x\r"}};
    for (const auto &c : cases) {
        exact_copy text(c.text);
        EXPECT_EQ(vesk_remove_crlf(text), text.get());
        EXPECT_STREQ(text, c.after);
    }
    EXPECT_EQ(vesk_remove_crlf(nullptr), nullptr);
}

TEST(Text, MostSignificantBit)
{
    EXPECT_EQ(vesk_math_msb32(0), 0);
    for (int bit = 0; bit < 32; bit++) // alone, and with every lower bit set
        EXPECT_EQ(std::make_pair(vesk_math_msb32(1u << bit), vesk_math_msb32((2u << bit) - 1)), std::pair(bit + 1, bit + 1));
}

} // namespace
