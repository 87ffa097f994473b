#pragma once

// A hook in front of every ioctl() of the test program and the library, for
// answers the kernel here cannot be made to give (a busy bridge, ...).
namespace fake_ioctl {
// Called before each ioctl with its arguments; a non-zero result fails that
// ioctl with that errno instead of issuing it.
using hook = int (*)(int fd, unsigned long request, void *arg);
// nullptr passes every call through.
void set(hook h);
} // namespace fake_ioctl
