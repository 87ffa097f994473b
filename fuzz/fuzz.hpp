// Fuzz entries: each row names an entry, the device file its input is
// written to first (or null), and what to call. Inputs come as exact-size
// heap copies: a text entry gets a terminator right after the input, a
// binary one nothing past it, so an over-read hits AddressSanitizer.
// "tool:NAME" as the path makes the device tool NAME print the input.
#pragma once

#include <stddef.h>

#include <span>

namespace fuzz {

struct entry {
    const char *name;
    const char *path;
    void (*run)(const char *data, size_t size);
    bool binary = false;
};

// Adds a file's rows to the entries the driver knows.
struct table {
    explicit table(std::span<const entry> rows);
    std::span<const entry> rows;
    const table *next;
};

} // namespace fuzz

// One table a file, inside its anonymous namespace.
#define VESK_FUZZ_TABLE(...)                                                                                   \
    constexpr fuzz::entry kRows[] = {__VA_ARGS__};                                                             \
    const fuzz::table kTable(kRows)
