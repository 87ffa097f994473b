// Stands in front of the C library's ioctl. Programs list the platform
// library ahead of the C library, so their calls and the library's land
// here; inside an emulated device (/run/vdev/inside) the driver requests of
// the model are answered, everything else goes on to the real ioctl. Under
// qemu-user this runs inside the emulated program, ahead of qemu, which
// would refuse the device-private requests with ENOSYS.
#include <dlfcn.h>
#include <errno.h>
#include <net/if.h> // ahead of the kernel's headers, which then leave its names alone
#include <linux/sockios.h>
#include <linux/wireless.h>
#include <stdarg.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "model.hpp"

namespace vdev_model {
namespace {

using ioctl_fn = int (*)(int, unsigned long, ...);

struct route {
    unsigned long first, last;
    answer (*handle)(const request &);
};
// Wireless Extensions (SIOCIWFIRST up to the last private request), the
// device-private requests and the MII reads.
constexpr route kRoutes[] = {
    {SIOCIWFIRST, SIOCIWLASTPRIV, radio_wext},
    {SIOCDEVPRIVATE, SIOCDEVPRIVATE + 15, device_private},
    {SIOCGMIIPHY, SIOCGMIIREG, mii},
};

bool inside_device()
{
    static int inside = -1; // decided once per process
    if (inside < 0)
        inside = access("/run/vdev/inside", F_OK) == 0;
    return inside;
}

const route *route_of(unsigned long number)
{
    for (const route &r : kRoutes)
        if (number >= r.first && number <= r.last)
            return &r;
    return nullptr;
}

} // namespace

int real_ioctl(int fd, unsigned long number, void *arg)
{
    static ioctl_fn next = reinterpret_cast<ioctl_fn>(dlsym(RTLD_NEXT, "ioctl"));
    if (next)
        return next(fd, number, arg);
    return static_cast<int>(syscall(SYS_ioctl, fd, number, arg));
}

answer kernel(const request &r)
{
    int rc = real_ioctl(r.fd, r.number, r.arg);
    if (rc >= 0)
        return rc;
    return errno == ENOSYS ? no_driver(r) : -errno;
}

answer no_driver(const request &r) { return if_nametoindex(r.ifname) ? -EOPNOTSUPP : -ENODEV; }

answer device_private(const request &r)
{
    int fixed_phy;
    switch (r.number) {
    case SIOCDEVPRIVATE:
        return bridge(r);
    case SIOCDEVPRIVATE + 6:
        return is_radio(r.ifname) ? qca_stations(r) : kernel(r);
    case SIOCDEVPRIVATE + 13:
    case SIOCDEVPRIVATE + 14:
        return is_mii_port(r.ifname, &fixed_phy) ? mii_private(r) : kernel(r);
    default:
        return kernel(r);
    }
}

} // namespace vdev_model

namespace {

int model_or_kernel(int fd, unsigned long number, void *arg, vdev_model::ioctl_fn next)
{
    using namespace vdev_model;
    const route *to = arg && inside_device() ? route_of(number) : nullptr;
    if (!to)
        return next ? next(fd, number, arg) : real_ioctl(fd, number, arg);
    // Every request routed here starts with the interface's name.
    request r{fd, number, arg, {}};
    memcpy(r.ifname, arg, kNameSize - 1);
    answer a = to->handle(r);
    if (a >= 0)
        return a;
    errno = -a;
    return -1;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int ioctl(int fd, unsigned long number, ...) __THROW
{
    va_list ap;
    va_start(ap, number);
    void *arg = va_arg(ap, void *);
    va_end(ap);
    return model_or_kernel(fd, number, arg, nullptr);
}

#if defined(__USE_TIME_BITS64) && __TIMESIZE == 32
// A 32-bit program built with 64-bit time calls the C library's ioctl by
// this name; the requests are the same.
extern "C" __attribute__((visibility("default"))) int __ioctl_time64(int fd, unsigned long number, ...) __THROW
{
    va_list ap;
    va_start(ap, number);
    void *arg = va_arg(ap, void *);
    va_end(ap);
    static const auto next = reinterpret_cast<vdev_model::ioctl_fn>(dlsym(RTLD_NEXT, "__ioctl_time64"));
    return model_or_kernel(fd, number, arg, next);
}
#endif
