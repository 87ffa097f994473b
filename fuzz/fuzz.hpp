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

#define VESK_FUZZ_CAT2(a, b) a##b
#define VESK_FUZZ_CAT(a, b) VESK_FUZZ_CAT2(a, b)
#define VESK_FUZZ_TABLE(...)                                                                                   \
    static constexpr fuzz::entry VESK_FUZZ_CAT(kRows, __LINE__)[] = {__VA_ARGS__};                             \
    static const fuzz::table VESK_FUZZ_CAT(kTable, __LINE__)(VESK_FUZZ_CAT(kRows, __LINE__))
