// Texts in heap blocks of exactly their size, so that AddressSanitizer (or a
// guard page) catches a routine that reads or writes past the terminator.
#pragma once

#include <stdlib.h>
#include <string.h>

#include <memory>
#include <string_view>

struct exact_copy {
    explicit exact_copy(std::string_view text) : block(static_cast<char *>(malloc(text.size() + 1)), free)
    {
        memcpy(block.get(), text.data(), text.size());
        block.get()[text.size()] = '\0';
    }
    char *get() const { return block.get(); }
    operator char *() const { return block.get(); }
    std::unique_ptr<char, decltype(&free)> block;
};
