// Requests to the wireless drivers: every one carries a standard iwreq (the
// interface name, then pointer, 16-bit length and 16-bit flags) on a
// short-lived internet datagram socket.
#pragma once

#include <linux/sockios.h>
#include <net/if.h>
#include <stdint.h>

#include <cstddef>
#include <span>

#include "vesk_iw.h"

namespace vesk::wlan {

// The Ralink driver's one private request; flags carry the sub-command.
inline constexpr unsigned long kRalinkPrivate = SIOCIWFIRSTPRIV + 1;
static_assert(kRalinkPrivate == 0x8BE1);

// Sub-commands of kRalinkPrivate, as the Ralink driver numbers them.
inline constexpr uint16_t kRalinkWpsProfile = 0x0750;
inline constexpr uint16_t kRalinkWpsStatus = 0x0751;
inline constexpr uint16_t kRalinkStations = 0x0800;
inline constexpr uint16_t kRalinkSurvey = 0x0802;
inline constexpr uint16_t kRalinkWdsPeers = 0x0803;

// The QCA driver's station list.
inline constexpr unsigned long kQcaStations = SIOCDEVPRIVATE + 6;
static_assert(kQcaStations == 0x89F6);

// The kernel's iwreq: the interface name, then the request's data.
struct iwreq {
    char name[IFNAMSIZ];
    iwreq_data u;
};

// Zeroes req and fills it for ifname with buf, length and flags; false (errno
// EINVAL or ENAMETOOLONG) for a name no interface can carry.
bool make_iwreq(iwreq &req, const char *ifname, void *buf, uint16_t length, uint16_t flags);

// Issues request on ifname with buf as the data (its size as the length) and
// flags. True when the driver answered; *answered then gets the length the
// driver left in the request. On false errno says why (EINVAL or
// ENAMETOOLONG for a name no interface can carry).
bool driver_request(const char *ifname, unsigned long request, uint16_t flags, std::span<std::byte> buf,
                    uint16_t *answered = nullptr);

// The bytes of a record, for the request's data.
template <typename T> std::span<std::byte> bytes_of(T &record) { return std::as_writable_bytes(std::span(&record, 1)); }

} // namespace vesk::wlan
