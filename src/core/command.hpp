// Command lines for the device's shell. This is the only place the library
// formats a line for CMD or sysinteract. The rule:
//   - The format is the command's own text, as the family defines it; it
//     may hold shell syntax (pipes, redirections, globs).
//   - Every %s takes a word from outside (a caller's argument, a file, a
//     header field, a tool's output). A plain word (letters, digits and
//     ._/:@%+=,- not starting with '-') goes in unchanged, so valid input
//     gives exactly the family's command line. Any other word is single-
//     quoted, ' written as '\'', so the tool gets it as one literal word.
//   - A word that starts with '-' (the tool would take it as an option), holds
//     a newline (the tools read lines), is null, or a line longer than
//     kMaxCommandLine, is refused: nothing runs, one line names the caller's
//     function, and the result is -1, as for a command that could not run.
//   - Numbers (%d, %u, %x, %X, %c with an optional zero-padded width) are
//     formatted as printf would; the format is checked against the arguments'
//     types at compile time.
#pragma once

#include <stddef.h>

#include <span>
#include <string_view>
#include <type_traits>

#include "core/unique.hpp"

namespace vesk::cmd {

// The result of a refused word: the same as a command that could not run.
inline constexpr int kRefused = -1;

// Longest line built, terminator excluded. The device's CMD must take it.
inline constexpr size_t kMaxCommandLine = 8192;

// One argument of a command line, after its type was checked.
struct piece {
    enum class kind : unsigned char { word, sint, uint, chr };
    kind k;
    const char *text;        // word
    long long s;             // sint
    unsigned long long u;    // uint and chr
};

namespace detail {

template <typename T> consteval char kind_of()
{
    using D = std::decay_t<T>;
    if constexpr (std::is_integral_v<D>)
        return 'n';
    else if constexpr (std::is_convertible_v<D, const char *>)
        return 's';
    else
        return '?';
}

// Not constexpr: reaching it while checking a format fails the build.
void bad_format();

template <typename T> piece piece_of(const T &v)
{
    using D = std::decay_t<T>;
    if constexpr (std::is_integral_v<D>) {
        if constexpr (std::is_signed_v<D>)
            return {piece::kind::sint, nullptr, static_cast<long long>(v),
                    static_cast<unsigned long long>(static_cast<std::make_unsigned_t<D>>(v))};
        else
            return {piece::kind::uint, nullptr, 0, static_cast<unsigned long long>(v)};
    } else {
        return {piece::kind::word, static_cast<const char *>(v), 0, 0};
    }
}

} // namespace detail

// A format whose conversions match the argument types: %s takes text,
// %d %u %x %X %c take integers; %% is a literal percent.
template <typename... Args> struct format {
    const char *text;
    consteval format(const char *f) : text(f)
    {
        constexpr char kinds[] = {detail::kind_of<Args>()..., '\0'};
        size_t n = 0;
        for (const char *p = f; *p; p++) {
            if (*p != '%')
                continue;
            if (*++p == '%')
                continue;
            while (*p >= '0' && *p <= '9')
                p++;
            const char want = *p == 's' ? 's' : (*p == 'd' || *p == 'u' || *p == 'x' || *p == 'X' || *p == 'c') ? 'n' : '!';
            if (n >= sizeof...(Args) || want != kinds[n++])
                detail::bad_format();
        }
        if (n != sizeof...(Args))
            detail::bad_format();
    }
};

// Builds the line; null (after a message naming func) when a word is refused.
unique_heap build(const char *func, const char *format, std::span<const piece> args);

// CMD and sysinteract with a line that build() or line() made.
int run_line(const char *line);
int capture_line(std::span<char> out, const char *line);
inline int run_line(const unique_heap &line) { return run_line(static_cast<const char *>(line.get())); }
inline int capture_line(std::span<char> out, const unique_heap &line)
{
    return capture_line(out, static_cast<const char *>(line.get()));
}

// Whether text would go into a command line unchanged.
bool is_plain_word(std::string_view text);

// The command line that fmt and args make, as run() would run it.
template <typename... Args>
unique_heap line(const char *func, format<std::type_identity_t<Args>...> fmt, const Args &...args)
{
    const piece pieces[] = {detail::piece_of(args)..., piece{}};
    return build(func, fmt.text, std::span(pieces, sizeof...(Args)));
}

// CMD with the line that fmt and args make: its result, or kRefused.
template <typename... Args> int run(const char *func, format<std::type_identity_t<Args>...> fmt, const Args &...args)
{
    unique_heap l = line<Args...>(func, fmt, args...);
    return l ? run_line(l) : kRefused;
}

// sysinteract into out with the line that fmt and args make: its result, or
// kRefused with out left as it was.
template <typename... Args>
int capture(const char *func, std::span<char> out, format<std::type_identity_t<Args>...> fmt, const Args &...args)
{
    unique_heap l = line<Args...>(func, fmt, args...);
    return l ? capture_line(out, l) : kRefused;
}

} // namespace vesk::cmd
