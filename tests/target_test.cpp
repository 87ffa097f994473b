// The board's build: word sizes and byte order, and what user-mode
// emulation passes through to the kernel.
#include <errno.h>
#include <gtest/gtest.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include "core/unique.hpp"
#include "vdev.hpp"

// A cross build for another MIPS flavour (big-endian, 64-bit) would pass
// its own suite and still be wrong for the board.
#if defined(__mips__)
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the board is little-endian");
static_assert(sizeof(void *) == 4 && sizeof(long) == 4, "the board is 32-bit");
#endif

namespace {

// MII, bridge, Ethernet-driver and Wireless-Extensions requests that no driver
// model covers: also under qemu-user (itself answering ENOSYS).
TEST(Target, DevicePrivateRequestsWithoutADriverGetTheKernelsAnswer)
{
    vesk::unique_fd s(socket(AF_INET, SOCK_DGRAM, 0));
    ASSERT_TRUE(s);
    const unsigned long requests[] = {SIOCGMIIPHY, SIOCGMIIREG, SIOCDEVPRIVATE, 0x89FD, 0x89FE, 0x89F6, 0x8BE1};
    for (auto [ifname, err] : {std::pair{"lan0", EOPNOTSUPP}, {"nosuch0", ENODEV}}) {
        for (unsigned long req : requests) {
            SCOPED_TRACE(testing::Message() << ifname << " " << std::hex << req);
            struct ifreq ifr {};
            strcpy(ifr.ifr_name, ifname);
            errno = 0;
            EXPECT_EQ(ioctl(s.get(), req, &ifr), -1);
            EXPECT_EQ(errno, err);
        }
    }
    EXPECT_TRUE(vdev::ioctls().empty());
}

} // namespace
