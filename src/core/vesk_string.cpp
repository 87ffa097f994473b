// Text and number helpers used across the library and by the firmware's
// programs.
#include "vesk_string.h"

#include <pcre.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "core/bits.hpp"
#include "core/unique.hpp"
#include "sysapi.h"

namespace {

constexpr char kDigits[] = "0123456789abcdef";
constexpr int kMaxBase = sizeof kDigits - 1;

// Index 31 is the terminator for ever; digits go from index 30 down to 1.
char itoa_buffer[32];

constexpr unsigned int kHexdumpWidth = 16;

// PCRE's matcher recurses, about half a kilobyte of stack a level: without
// a bound a long text (a web form's field) overflows the stack. A thousand
// levels fit a small thread's stack and cover fields of the usual lengths;
// beyond that the text does not match.
constexpr unsigned long kMatchRecursionLimit = 1000;

constexpr char ascii_lower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

} // namespace

extern "C" {

int vesk_reg_match(const char *pattern, const char *text)
{
    if (!pattern || !text) {
        T_PRINTF("Err: function %s, input is NULL!\n", __func__);
        return 0;
    }
    const char *error = nullptr;
    int error_offset = 0;
    pcre *re = pcre_compile(pattern, 0, &error, &error_offset, nullptr);
    if (!re) {
        T_PRINTF("PCRE compilation failed at offset %d: %s\n", error_offset, error ? error : "");
        return 0;
    }
    vesk::unique_heap owner(re); // PCRE allocates with the plain malloc
    int ovector[30];
    pcre_extra limits = {};
    limits.flags = PCRE_EXTRA_MATCH_LIMIT_RECURSION;
    limits.match_limit_recursion = kMatchRecursionLimit;
    int rc = pcre_exec(re, &limits, text, static_cast<int>(strlen(text)), 0, 0, ovector, 30);
    // 0 only says the offset vector was too small: still a match.
    return rc >= 0 ? 1 : 0;
}

void vesk_dbg_hexdump(unsigned int base, const void *data, unsigned int len)
{
    if (!data)
        return;
    const auto *bytes = static_cast<const unsigned char *>(data);
    // "%08x: " + 16 * "%02X " + " |" + 16 characters + terminator
    char line[10 + kHexdumpWidth * 3 + 2 + kHexdumpWidth + 1];
    for (unsigned int pos = 0; pos < len; pos += kHexdumpWidth) {
        unsigned int count = len - pos < kHexdumpWidth ? len - pos : kHexdumpWidth;
        size_t n = 0;
        n += snprintf(line + n, sizeof line - n, "%08x: ", pos + base);
        for (unsigned int i = 0; i < count; i++)
            n += snprintf(line + n, sizeof line - n, "%02X ", bytes[pos + i]);
        // The filler of a short line is narrower than the byte groups it
        // stands for; the device's dumps look like this and tools parse them.
        for (unsigned int col = count; col < kHexdumpWidth; col++)
            n += snprintf(line + n, sizeof line - n, "%s", (col & 1) ? "   " : "  ");
        n += snprintf(line + n, sizeof line - n, " |");
        for (unsigned int i = 0; i < count; i++) {
            unsigned char b = bytes[pos + i];
            line[n++] = (b >= 0x20 && b <= 0x7E) ? static_cast<char>(b) : '.';
        }
        line[n] = '\0';
        printf("%s|\n", line);
    }
}

int vesk_string_remove_char(char *text, char c)
{
    if (!text)
        return 0;
    char *out = text;
    int removed = 0;
    for (const char *in = text; *in; in++) {
        if (*in == c)
            removed++;
        else
            *out++ = *in;
    }
    *out = '\0';
    return removed;
}

int vesk_string_replace_char(char *text, char from, char to)
{
    if (!text)
        return 0;
    int replaced = 0;
    for (char *p = text; *p; p++) {
        if (*p == from) {
            *p = to;
            replaced++;
        }
    }
    return replaced;
}

int vesk_char_to_int(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 'A' - 55;
    if (c >= 'A' && c <= 'Z')
        return c - 55;
    return -1;
}

char *vesk_char_skip_whitespace(const char *text)
{
    if (!text)
        return nullptr;
    while (*text == ' ' || *text == '\t')
        text++;
    return const_cast<char *>(text);
}

char *vesk_char_last_is(const char *text, char c)
{
    if (!text || !*text)
        return nullptr;
    const char *last = text + strlen(text) - 1;
    return *last == c ? const_cast<char *>(last) : nullptr;
}

char *vesk_string_get_last_path_component_nostrip(char *path)
{
    if (!path)
        return nullptr;
    char *slash = strrchr(path, '/');
    if (!slash || (slash == path && path[1] == '\0'))
        return path; // the root keeps its name
    return slash + 1;
}

char *vesk_string_get_last_path_component_strip(char *path)
{
    if (!path)
        return nullptr;
    size_t len = strlen(path);
    while (len > 1 && path[len - 1] == '/')
        path[--len] = '\0';
    return vesk_string_get_last_path_component_nostrip(path);
}

char *vesk_strcat(char *dst, const char *format, ...)
{
    if (!dst)
        return nullptr;
    if (!format)
        return dst;
    char piece[2048];
    va_list ap;
    va_start(ap, format);
    int n = vsnprintf(piece, sizeof piece, format, ap);
    va_end(ap);
    if (n < 0)
        return dst;
    strcat(dst, piece);
    return dst;
}

char *vesk_itoa(int value, int base)
{
    constexpr int kLast = sizeof itoa_buffer - 2; // index 30
    int pos = kLast + 1;
    if (base < 2 || base > kMaxBase)
        return itoa_buffer + pos;
    // No sign: a negative value shows its two's-complement pattern, which
    // also keeps every remainder a valid index into the digit set.
    auto v = static_cast<unsigned int>(value);
    auto b = static_cast<unsigned int>(base);
    while (v && pos > 1) {
        itoa_buffer[--pos] = kDigits[v % b];
        v /= b;
    }
    return itoa_buffer + pos;
}

int vesk_url_cmp(const char *a, const char *b)
{
    // Compared in place rather than through fixed 128-byte copies, so long
    // URLs are neither cut nor overrun.
    if (!a)
        a = "";
    if (!b)
        b = "";
    for (;; a++, b++) {
        auto ca = static_cast<unsigned char>(ascii_lower(*a));
        auto cb = static_cast<unsigned char>(ascii_lower(*b));
        if (ca != cb || !ca)
            return ca - cb;
    }
}

char *vesk_remove_crlf(char *text)
{
    if (!text)
        return nullptr;
    size_t len = strlen(text);
    if (len && text[len - 1] == '\n') {
        text[--len] = '\0';
        if (len && text[len - 1] == '\r')
            text[len - 1] = '\0';
    }
    return text;
}

int vesk_math_msb32(unsigned int value) { return vesk::msb32(value); }

} // extern "C"
