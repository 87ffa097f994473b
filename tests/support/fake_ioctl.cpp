// Stands in for the C library's ioctl() in the test program (the program
// exports its symbols, so the library's calls land here) and passes each
// call on to the real one unless a test's hook fails it.
#include "fake_ioctl.hpp"

#include <dlfcn.h>
#include <errno.h>
#include <stdarg.h>
#include <sys/ioctl.h>

namespace fake_ioctl {
namespace {
hook current;
}
void set(hook h) { current = h; }
} // namespace fake_ioctl

extern "C" __attribute__((visibility("default"))) int ioctl(int fd, unsigned long request, ...) __THROW
{
    va_list ap;
    va_start(ap, request);
    void *arg = va_arg(ap, void *);
    va_end(ap);
    if (fake_ioctl::current) {
        if (int err = fake_ioctl::current(fd, request, arg)) {
            errno = err;
            return -1;
        }
    }
    using real_fn = int (*)(int, unsigned long, ...);
    static real_fn real = reinterpret_cast<real_fn>(dlsym(RTLD_NEXT, "ioctl"));
    return real(fd, request, arg);
}
