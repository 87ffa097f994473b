#include "core/ifreq.hpp"

#include <errno.h>
#include <string.h>
#include <sys/ioctl.h>

namespace vesk {

bool put_ifname(char (&field)[IFNAMSIZ], const char *ifname)
{
    memset(field, 0, sizeof field);
    if (!ifname) {
        errno = EINVAL;
        return false;
    }
    size_t len = strnlen(ifname, sizeof field);
    if (len == sizeof field) {
        errno = ENAMETOOLONG;
        return false;
    }
    memcpy(field, ifname, len);
    return true;
}

bool make_ifreq(ifreq &req, const char *ifname)
{
    memset(&req, 0, sizeof req);
    return put_ifname(req.ifr_name, ifname);
}

unique_fd open_socket(sock_kind kind) { return unique_fd(::socket(kind.family, kind.type, kind.protocol)); }

ioctl_status socket_ioctl(sock_kind kind, unsigned long request, void *arg)
{
    unique_fd sock = open_socket(kind);
    if (!sock)
        return ioctl_status::no_socket;
    if (::ioctl(sock.get(), request, arg) < 0) {
        int err = errno;
        sock.reset();
        errno = err; // close() must not hide why the request failed
        return ioctl_status::failed;
    }
    return ioctl_status::ok;
}

bool query_if(const char *ifname, unsigned long request, ifreq &req)
{
    return make_ifreq(req, ifname) && socket_ioctl(kInetDgram, request, &req) == ioctl_status::ok;
}

} // namespace vesk
