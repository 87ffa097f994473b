// Line-by-line reading of kernel text tables (/proc/mtd, /proc/mounts, ...)
// into fixed buffers.
#pragma once

#include <stdio.h>
#include <string.h>

#include <span>

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

} // namespace vesk
