// Line-by-line reading of kernel tables and small text files into a fixed
// buffer. A line longer than the buffer is cut, and the rest of it is
// dropped, so its tail is never mistaken for a line of its own.
#pragma once

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include "core/unique.hpp"

namespace vesk {

template <size_t N>
class line_reader {
    static_assert(N >= 2, "room for one character and the terminator");

public:
    explicit line_reader(const char *path) : file_(open_file(path, "r")) {}

    explicit operator bool() const { return bool(file_); }

    // The next line, its newline kept, or null at the end of the file.
    // The text stays valid until the next call.
    char *next()
    {
        if (!file_ || !fgets(line_, N, file_.get()))
            return nullptr;
        if (!strchr(line_, '\n')) {
            int c;
            while ((c = getc(file_.get())) != EOF && c != '\n') {
            }
        }
        return line_;
    }

    // Passes over count lines (column headers); false when the file ends first.
    bool skip(int count)
    {
        for (int i = 0; i < count; i++)
            if (!next())
                return false;
        return true;
    }

private:
    unique_file file_;
    char line_[N];
};

} // namespace vesk
