// One line of a text table (/proc and the like) into a fixed buffer.
#pragma once

#include <stdio.h>
#include <string.h>

#include <span>

namespace vesk {

// Reads the next line into buf, with its newline when it fits. The rest of
// a line too long for buf is read and dropped, so that its tail is never
// taken for a line of its own. false at the end of the file.
inline bool read_line(FILE *f, std::span<char> buf)
{
    if (buf.size() < 2 || !fgets(buf.data(), static_cast<int>(buf.size()), f))
        return false;
    if (!strchr(buf.data(), '\n')) {
        int c;
        while ((c = getc(f)) != EOF && c != '\n') {
        }
    }
    return true;
}

} // namespace vesk
