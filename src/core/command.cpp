#include "core/command.hpp"

#include <stdio.h>
#include <string.h>

#include "sysapi.h"

namespace vesk::cmd {

namespace {

bool plain_char(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           (c != '\0' && strchr("._/:@%+=,-", c));
}

// Appends to a line of known capacity, or only counts when dst is null.
struct sink {
    char *dst;
    size_t used = 0;
    void put(char c)
    {
        if (dst)
            dst[used] = c;
        used++;
    }
    void put(std::string_view s)
    {
        for (char c : s)
            put(c);
    }
};

void put_word(sink &out, std::string_view w)
{
    if (is_plain_word(w)) {
        out.put(w);
        return;
    }
    out.put('\'');
    for (char c : w) {
        if (c == '\'')
            out.put("'\\''");
        else
            out.put(c);
    }
    out.put('\'');
}

// One numeric conversion: conv_text is "%", an optional width and the letter.
void put_number(sink &out, std::string_view conv_text, const piece &p)
{
    char fmt[16], text[32];
    const char conv = conv_text.back();
    const int width = static_cast<int>(conv_text.size() - 2);
    if (conv == 'c') {
        snprintf(fmt, sizeof fmt, "%.*sc", width + 1, conv_text.data());
        snprintf(text, sizeof text, fmt, static_cast<int>(static_cast<unsigned char>(p.u)));
    } else if (conv == 'd') {
        snprintf(fmt, sizeof fmt, "%.*slld", width + 1, conv_text.data());
        snprintf(text, sizeof text, fmt, p.k == piece::kind::sint ? p.s : static_cast<long long>(p.u));
    } else {
        snprintf(fmt, sizeof fmt, "%.*sll%c", width + 1, conv_text.data(), conv);
        snprintf(text, sizeof text, fmt, p.u);
    }
    out.put(std::string_view(text));
}

const char *refusal(const char *word)
{
    if (!word)
        return "is missing";
    if (word[0] == '-')
        return "starts with '-'";
    if (strchr(word, '\n'))
        return "holds a newline";
    return nullptr;
}

// Writes the line into out; false (after the message) when a word is refused.
bool render(sink &out, const char *func, const char *format, std::span<const piece> args)
{
    size_t n = 0;
    for (const char *p = format; *p; p++) {
        if (*p != '%') {
            out.put(*p);
            continue;
        }
        const char *conv_text = p;
        if (*++p == '%') {
            out.put('%');
            continue;
        }
        while (*p >= '0' && *p <= '9')
            p++;
        const piece &arg = args[n++];
        if (*p != 's') {
            put_number(out, std::string_view(conv_text, static_cast<size_t>(p - conv_text + 1)), arg);
            continue;
        }
        if (const char *why = refusal(arg.text)) {
            T_PRINTF("%s: argument %zu %s, not run\n", func, n, why);
            return false;
        }
        put_word(out, arg.text);
    }
    return true;
}

} // namespace

bool is_plain_word(std::string_view text)
{
    if (text.empty() || text[0] == '-')
        return false;
    for (char c : text)
        if (!plain_char(static_cast<unsigned char>(c)))
            return false;
    return true;
}

unique_heap build(const char *func, const char *format, std::span<const piece> args)
{
    sink count{nullptr};
    if (!render(count, func, format, args))
        return {};
    if (count.used > kMaxCommandLine) {
        T_PRINTF("%s: command line of %zu bytes too long, not run\n", func, count.used);
        return {};
    }
    unique_heap line(malloc(count.used + 1));
    if (!line)
        return {};
    sink out{static_cast<char *>(line.get())};
    render(out, func, format, args);
    out.dst[out.used] = '\0';
    return line;
}

int run_line(const char *line) { return CMD("%s", line); }

int capture_line(std::span<char> out, const char *line)
{
    return sysinteract(out.data(), static_cast<int>(out.size()), "%s", line);
}

} // namespace vesk::cmd
