// Move-only owners for descriptors, streams, directories and heap blocks, so
// that every return path releases what a call opened. Shared by the library
// and the stand-ins of the device's closed libraries (header-only).
#pragma once

#include <dirent.h>
#include <netdb.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <utility>

namespace vesk {

template <typename T, typename Traits>
class unique_handle {
public:
    unique_handle() = default;
    explicit unique_handle(T h) : h_(h) {}
    unique_handle(unique_handle &&o) noexcept : h_(std::exchange(o.h_, Traits::invalid())) {}
    unique_handle &operator=(unique_handle &&o) noexcept
    {
        if (this != &o)
            reset(std::exchange(o.h_, Traits::invalid()));
        return *this;
    }
    unique_handle(const unique_handle &) = delete;
    unique_handle &operator=(const unique_handle &) = delete;
    ~unique_handle() { reset(); }

    T get() const { return h_; }
    explicit operator bool() const { return h_ != Traits::invalid(); }
    T release() { return std::exchange(h_, Traits::invalid()); }
    void reset(T h = Traits::invalid())
    {
        T old = std::exchange(h_, h);
        if (old != Traits::invalid())
            Traits::close(old);
    }

private:
    T h_ = Traits::invalid();
};

struct fd_traits {
    static int invalid() { return -1; }
    static void close(int fd) { ::close(fd); }
};
struct file_traits {
    static FILE *invalid() { return nullptr; }
    static void close(FILE *f) { ::fclose(f); }
};
struct dir_traits {
    static DIR *invalid() { return nullptr; }
    static void close(DIR *d) { ::closedir(d); }
};
struct heap_traits {
    static void *invalid() { return nullptr; }
    static void close(void *p) { ::free(p); }
};

struct addrinfo_traits {
    static addrinfo *invalid() { return nullptr; }
    static void close(addrinfo *a) { ::freeaddrinfo(a); }
};

using unique_fd = unique_handle<int, fd_traits>;
using unique_file = unique_handle<FILE *, file_traits>;
using unique_dir = unique_handle<DIR *, dir_traits>;
using unique_heap = unique_handle<void *, heap_traits>;
using unique_addrinfo = unique_handle<addrinfo *, addrinfo_traits>;

inline unique_file open_file(const char *path, const char *mode) { return unique_file(::fopen(path, mode)); }

} // namespace vesk
