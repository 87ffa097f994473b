#include "wlan/driver.hpp"

#include <errno.h>
#include <string.h>

#include "core/ifreq.hpp"

namespace vesk::wlan {

// The device's iwreq: a 16-byte name, then a 32-bit pointer on the board.
static_assert(offsetof(iwreq, u.data.pointer) == IFNAMSIZ);
static_assert(offsetof(iwreq, u.data.length) == IFNAMSIZ + sizeof(void *));
static_assert(offsetof(iwreq, u.data.flags) == IFNAMSIZ + sizeof(void *) + 2);

bool driver_request(const char *ifname, unsigned long request, uint16_t flags, std::span<std::byte> buf,
                    uint16_t *answered)
{
    if (buf.size() > UINT16_MAX) {
        errno = EINVAL;
        return false;
    }
    iwreq req;
    memset(&req, 0, sizeof req);
    if (!put_ifname(req.ifr_name, ifname))
        return false;
    req.u.data.pointer = buf.data();
    req.u.data.length = static_cast<uint16_t>(buf.size());
    req.u.data.flags = flags;
    if (socket_ioctl(kInetDgram, request, &req) != ioctl_status::ok)
        return false;
    if (answered)
        *answered = req.u.data.length;
    return true;
}

} // namespace vesk::wlan
