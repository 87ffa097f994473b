// Outcomes, records and argument checks shared by every vesk family.
#include <arpa/inet.h>
#include <ctype.h>
#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "cli.hpp"
#include "cli_state.hpp"

namespace cli {

state g_state;

namespace {

FILE *out() { return g_state.out; }

constexpr const char *kPlaceholders[] = {"---", "0.0.0.0", "000000000000", "unknown"};

int say(int code, const char *format, va_list ap)
{
    fprintf(stderr, "vesk %s %s: ", g_state.family, g_state.command);
    vfprintf(stderr, format, ap);
    fputc('\n', stderr);
    return code;
}

void json_string(const char *s)
{
    fputc('"', out());
    for (const unsigned char *p = reinterpret_cast<const unsigned char *>(s); *p; p++) {
        if (*p == '"' || *p == '\\')
            fprintf(out(), "\\%c", *p);
        else if (*p < 0x20)
            fprintf(out(), "\\u%04x", *p);
        else
            fputc(*p, out());
    }
    fputc('"', out());
}

// Starts one field of a record: the separator and the key.
void key(bool &first, const char *name)
{
    if (g_state.json) {
        if (!first)
            fputc(',', out());
        json_string(name);
        fputc(':', out());
    } else if (g_state.in_list) {
        if (!first)
            fputc(' ', out());
    } else {
        fprintf(out(), "%s ", name);
    }
    first = false;
}

void end_field()
{
    if (!g_state.json && !g_state.in_list)
        fputc('\n', out());
}

bool bad(const char *text, const char *what)
{
    fprintf(stderr, "vesk %s %s: %s is not %s\n", g_state.family, g_state.command, text, what);
    return false;
}

} // namespace

bool json() { return g_state.json; }

void library_output(bool to_user)
{
    fflush(stdout);
    fflush(out());
    if (g_state.out != stdout)
        dup2(to_user ? fileno(g_state.out) : STDERR_FILENO, STDOUT_FILENO);
}

int miss(const char *format, ...)
{
    va_list ap;
    va_start(ap, format);
    say(kMiss, format, ap);
    va_end(ap);
    return kMiss;
}

int refuse(const char *format, ...)
{
    va_list ap;
    va_start(ap, format);
    say(kUsage, format, ap);
    va_end(ap);
    return kUsage;
}

bool placeholder(const char *text)
{
    if (!text || !*text)
        return true;
    for (const char *p : kPlaceholders)
        if (!strcmp(text, p))
            return true;
    return false;
}

int text(const char *value)
{
    if (!value || !*value)
        return miss("no answer");
    if (g_state.json)
        json_string(value);
    else
        fputs(value, out());
    fputc('\n', out());
    return kAnswer;
}

int answer(const char *value)
{
    if (placeholder(value))
        return miss("no answer (%s)", value && *value ? value : "none");
    return text(value);
}

int answer_list(const char *value, char sep)
{
    if (placeholder(value) || !g_state.json)
        return answer(value);
    fputc('[', out());
    for (const char *p = value; *p;) {
        const char *end = strchr(p, sep);
        size_t len = end ? static_cast<size_t>(end - p) : strlen(p);
        char item[128];
        snprintf(item, sizeof item, "%.*s", static_cast<int>(len), p);
        if (p != value)
            fputc(',', out());
        json_string(item);
        p += len + (end ? 1 : 0);
    }
    fputs("]\n", out());
    return kAnswer;
}

int number(long long value)
{
    fprintf(out(), "%lld\n", value);
    return kAnswer;
}

int number_u(unsigned long long value)
{
    fprintf(out(), "%llu\n", value);
    return kAnswer;
}

int done(bool ok, const char *what) { return ok ? kAnswer : miss("%s failed", what); }

record::record()
{
    if (g_state.json) {
        if (g_state.in_list && g_state.rows++)
            fputc(',', out());
        fputc('{', out());
    }
}

record::~record()
{
    if (g_state.json)
        fputs(g_state.in_list ? "}" : "}\n", out());
    else if (g_state.in_list)
        fputc('\n', out());
}

record &record::text(const char *name, const char *value)
{
    key(first_, name);
    if (g_state.json)
        json_string(value ? value : "");
    else
        fputs(g_state.in_list && !(value && *value) ? "-" : value ? value : "", out());
    end_field();
    return *this;
}

record &record::number(const char *name, long long value)
{
    key(first_, name);
    fprintf(out(), "%lld", value);
    end_field();
    return *this;
}

record &record::number_u(const char *name, unsigned long long value)
{
    key(first_, name);
    fprintf(out(), "%llu", value);
    end_field();
    return *this;
}

list::list()
{
    g_state.in_list = true;
    g_state.rows = 0;
    if (g_state.json)
        fputc('[', out());
}

list::~list()
{
    g_state.in_list = false;
    if (g_state.json)
        fputs("]\n", out());
}

bool parse_i64(const char *text, long long *out, long long min, long long max)
{
    errno = 0;
    char *end;
    const long long v = strtoll(text, &end, 0);
    if (errno || end == text || *end || isspace(static_cast<unsigned char>(*text)) || v < min || v > max) {
        fprintf(stderr, "vesk %s %s: %s is not a number from %lld to %lld\n", g_state.family, g_state.command,
                text, min, max);
        return false;
    }
    *out = v;
    return true;
}

bool parse_int(const char *text, int *out, long long min, long long max)
{
    long long v;
    if (!parse_i64(text, &v, min, max))
        return false;
    *out = static_cast<int>(v);
    return true;
}

bool parse_u64(const char *text, unsigned long long *out)
{
    errno = 0;
    char *end;
    if (!isdigit(static_cast<unsigned char>(*text)))
        return bad(text, "a number");
    *out = strtoull(text, &end, 0);
    return !errno && !*end ? true : bad(text, "a number");
}

bool parse_uint(const char *text, unsigned int *out, unsigned long long max)
{
    unsigned long long v;
    if (!parse_u64(text, &v))
        return false;
    if (v > max) {
        fprintf(stderr, "vesk %s %s: %s is greater than %llu\n", g_state.family, g_state.command, text, max);
        return false;
    }
    *out = static_cast<unsigned int>(v);
    return true;
}

bool is_mac(const char *text)
{
    // Pairs of hex digits, all joined by ':' or none.
    size_t len = strlen(text);
    bool colons = len == 17;
    if (!colons && len != 12)
        return false;
    for (size_t i = 0; i < len; i++) {
        bool sep = colons && i % 3 == 2;
        if (sep ? text[i] != ':' : !isxdigit(static_cast<unsigned char>(text[i])))
            return false;
    }
    return true;
}

bool parse_mac(const char *text, unsigned char mac[6])
{
    if (!is_mac(text))
        return bad(text, "a MAC address (xx:xx:xx:xx:xx:xx or 12 hex digits)");
    for (int i = 0, at = 0; i < 6; i++, at += text[2] == ':' ? 3 : 2) {
        char pair[3] = {text[at], text[at + 1], 0};
        mac[i] = static_cast<unsigned char>(strtoul(pair, nullptr, 16));
    }
    return true;
}

bool parse_mac12(const char *text)
{
    return (is_mac(text) && text[2] != ':') || bad(text, "12 hex digits");
}

bool is_ipv4(const char *text)
{
    in_addr a;
    return inet_pton(AF_INET, text, &a) == 1;
}

bool parse_ipv4(const char *text) { return is_ipv4(text) || bad(text, "a dotted IPv4 address"); }

bool parse_choice(const char *text, const char *const *choices, int *out)
{
    for (int i = 0; choices[i]; i++) {
        if (!strcmp(text, choices[i])) {
            *out = i;
            return true;
        }
    }
    fprintf(stderr, "vesk %s %s: %s is not one of", g_state.family, g_state.command, text);
    for (int i = 0; choices[i]; i++)
        fprintf(stderr, " %s", choices[i]);
    fputc('\n', stderr);
    return false;
}

bool parse_date(const char *text, int *year, int *month, int *day)
{
    static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    char end;
    int y, m, d;
    if (sscanf(text, "%4d-%2d-%2d%c", &y, &m, &d, &end) != 3 || y < 1970 || m < 1 || m > 12 || d < 1 ||
        d > kDays[m - 1] || (m == 2 && d == 29 && (y % 4 || (y % 100 == 0 && y % 400))))
        return bad(text, "a date YYYY-MM-DD that exists");
    *year = y, *month = m, *day = d;
    return true;
}

bool parse_clock(const char *text, int *hour, int *minute)
{
    char end;
    int h, m;
    if (sscanf(text, "%2d:%2d%c", &h, &m, &end) != 2 || h < 0 || h > 23 || m < 0 || m > 59)
        return bad(text, "a time hh:mm");
    *hour = h, *minute = m;
    return true;
}

} // namespace cli
