// Interface requests: one zeroed ifreq with a bounded name, and one path that
// opens a short-lived socket, issues a single ioctl and closes the socket.
// Every interface query of the library goes through these two.
#pragma once

#include <net/if.h>
#include <sys/socket.h>

#include "core/unique.hpp"

namespace vesk {

struct sock_kind {
    int family;
    int type;
    int protocol;
};

// The socket most interface requests are issued on.
inline constexpr sock_kind kInetDgram{AF_INET, SOCK_DGRAM, 0};

// Copies ifname into a request's 16-byte name field, terminated. A null name
// or one of more than IFNAMSIZ - 1 characters is refused (false, errno EINVAL
// or ENAMETOOLONG): no interface can carry such a name, and a cut-off copy
// could address a different interface.
bool put_ifname(char (&field)[IFNAMSIZ], const char *ifname);

// Zeroes req and copies ifname into its 16-byte name field, as put_ifname.
bool make_ifreq(ifreq &req, const char *ifname);

unique_fd open_socket(sock_kind kind);

enum class ioctl_status { ok, no_socket, failed };

// Opens a socket of the given kind, issues request with arg and closes the
// socket again. errno is that of the failing call when the status is not ok.
ioctl_status socket_ioctl(sock_kind kind, unsigned long request, void *arg);

// make_ifreq and socket_ioctl on an internet datagram socket in one step;
// false on any failure.
bool query_if(const char *ifname, unsigned long request, ifreq &req);

} // namespace vesk
