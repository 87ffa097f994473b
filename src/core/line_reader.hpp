// Line-by-line reading of kernel text tables (/proc/mtd, /proc/mounts, ...)
// into fixed buffers.
#pragma once

#include <stdio.h>
#include <string.h>

#include <span>

#include "core/unique.hpp"

namespace vesk {

// Reads the next line into buf: at most buf.size() - 1 characters, newline
// kept when it fits. The rest of a longer line is read and dropped, so that
// one line of the file is always one line for the caller.
// Returns false at the end of the file.
inline bool read_line(FILE *f, std::span<char> buf)
{
    if (buf.size() < 2 || !fgets(buf.data(), static_cast<int>(buf.size()), f))
        return false;
    if (!strchr(buf.data(), '\n')) {
        for (int c = getc(f); c != EOF && c != '\n'; c = getc(f)) {
        }
    }
    return true;
}

// A file opened for reading with its own line buffer of N bytes, for a
// table read once from top to bottom.
template <size_t N>
class line_reader {
    static_assert(N >= 2, "room for one character and the terminator");

public:
    explicit line_reader(const char *path) : file_(open_file(path, "r")) {}

    explicit operator bool() const { return bool(file_); }

    // The next line as read_line gives it, or null at the end of the file.
    // The text stays valid until the next call.
    char *next() { return file_ && read_line(file_.get(), line_) ? line_ : nullptr; }

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
