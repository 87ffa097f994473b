// Wireless Extensions requests: the kernel's iwreq (an interface name, then
// the request data), zeroed, with a bounded name and u.data set.
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "core/ifreq.hpp"
#include "vesk_iw.h"

namespace vesk {

struct iwreq {
    char name[IFNAMSIZ];
    iwreq_data u;
};
static_assert(offsetof(iwreq, u) == IFNAMSIZ);
static_assert(sizeof(iwreq_data) == 16, "a sockaddr, or two pointer-sized words at most");

// False (errno set) when ifname is refused; see copy_ifname.
inline bool make_iwreq(iwreq &req, const char *ifname, void *buf, uint16_t length, uint16_t flags)
{
    memset(&req, 0, sizeof req);
    req.u.data.pointer = buf;
    req.u.data.length = length;
    req.u.data.flags = flags;
    return copy_ifname(req.name, ifname);
}

} // namespace vesk
