#include "wlan/driver.hpp"

#include <errno.h>
#include <string.h>

#include "core/ifreq.hpp"

namespace vesk::wlan {

// The device's iwreq: a 16-byte name, then a 32-bit pointer on the board.
static_assert(offsetof(iwreq, u.data.pointer) == IFNAMSIZ);
static_assert(offsetof(iwreq, u.data.length) == IFNAMSIZ + sizeof(void *));
static_assert(offsetof(iwreq, u.data.flags) == IFNAMSIZ + sizeof(void *) + 2);

bool make_iwreq(iwreq &req, const char *ifname, void *buf, uint16_t length, uint16_t flags)
{
    memset(&req, 0, sizeof req);
    req.u.data.pointer = buf;
    req.u.data.length = length;
    req.u.data.flags = flags;
    return put_ifname(req.name, ifname);
}

bool driver_request(const char *ifname, unsigned long request, uint16_t flags, std::span<std::byte> buf,
                    uint16_t *answered)
{
    if (buf.size() > UINT16_MAX) {
        errno = EINVAL;
        return false;
    }
    iwreq req;
    if (!make_iwreq(req, ifname, buf.data(), static_cast<uint16_t>(buf.size()), flags))
        return false;
    if (socket_ioctl(kInetDgram, request, &req) != ioctl_status::ok)
        return false;
    if (answered)
        *answered = req.u.data.length;
    return true;
}

} // namespace vesk::wlan
