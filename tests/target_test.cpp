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

// Device-private requests (MII, the bridge's SIOCDEVPRIVATE, the Ethernet
// driver's 0x89FD/0x89FE, Wireless Extensions) are answered by qemu-user
// itself with ENOSYS: their tests skip under emulation as this one does.
TEST(Target, DevicePrivateRequestsReachTheKernel)
{
    VDEV_SKIP_UNDER_QEMU("qemu-user answers device-private ioctls with ENOSYS");
    vesk::unique_fd s(socket(AF_INET, SOCK_DGRAM, 0));
    ASSERT_TRUE(s);
    const unsigned long requests[] = {SIOCGMIIPHY, SIOCDEVPRIVATE, 0x89FD, 0x89FE};
    for (unsigned long req : requests) {
        SCOPED_TRACE(req);
        struct ifreq ifr {};
        strcpy(ifr.ifr_name, "eth2");
        errno = 0;
        EXPECT_EQ(ioctl(s.get(), req, &ifr), -1);
        EXPECT_EQ(errno, EOPNOTSUPP); // the veth driver's own answer
    }
}

} // namespace
