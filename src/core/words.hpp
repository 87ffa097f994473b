// Splitting a line of text into blank-separated words without copying.
#pragma once

#include <string.h>

#include <string_view>

namespace vesk {

inline bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; }

// The next word of text, which is advanced past it; empty at the end.
inline std::string_view next_word(std::string_view &text)
{
    size_t start = 0;
    while (start < text.size() && is_blank(text[start]))
        start++;
    size_t end = start;
    while (end < text.size() && !is_blank(text[end]))
        end++;
    std::string_view word(text.data() + start, end - start);
    text.remove_prefix(end);
    return word;
}

// Copies text into a fixed field, cut to the field's size and terminated.
template <size_t N> void put_text(char (&field)[N], std::string_view text)
{
    static_assert(N > 0);
    size_t len = text.size() < N - 1 ? text.size() : N - 1;
    if (len) // an empty view may have no data at all
        memcpy(field, text.data(), len);
    field[len] = '\0';
}

} // namespace vesk
