// The device model's own promise that the library's tests cannot see: it never
// writes past the caller's length. (The tools and the program sharing the PHY
// registers: MiiControl; failures on demand that run out: the QCA survey's polls.)
#include <errno.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "core/unique.hpp"
#include "vdev.hpp"

namespace {

struct private_request {
    char name[16];
    void *pointer;
    uint16_t length, flags;
    char pad[16 - sizeof(void *) - 4];
};
static_assert(sizeof(private_request) == 32);

// Issues a private request on a buffer of room bytes followed by guard
// bytes; the length that came back, or -errno.
int ask(const char *ifname, unsigned long number, uint16_t flags, std::vector<unsigned char> &buf, uint16_t room)
{
    vesk::unique_fd s(socket(AF_INET, SOCK_DGRAM, 0));
    private_request req{};
    strcpy(req.name, ifname);
    buf.assign(room + 64u, 0xEE);
    req.pointer = buf.data();
    req.length = room;
    req.flags = flags;
    return ioctl(s.get(), number, &req) == 0 ? req.length : -errno;
}

TEST(Model, AnswersStopAtTheCallersLength)
{
    vdev::put("/run/vdev/radio/ath0/stations", "mac=02:00:00:00:00:01 rssi=-3\nmac=02:00:00:00:00:02 size=200 len=0\n"
                                               "mac=02:00:00:00:00:03 size=100\n");
    vdev::put("/run/vdev/radio/ra0/wps_profile", std::string(1000, 'p'));
    const struct { const char *ifname; unsigned long number; uint16_t flags, room; int answered; } cases[] = {
        {"ra0", 0x8BE1, 0x0750, 968, 968},   {"ra0", 0x8BE1, 0x0750, 2000, 968}, {"ra0", 0x8BE1, 0x0751, 3, 3},
        {"ra0", 0x8BE1, 0x0800, 48, 48},     {"ra0", 0x8BE1, 0x0800, 4096, 2048}, {"ra0", 0x8BE1, 0x0802, 250, 250},
        {"ath0", 0x89F6, 1, 24576, 492},    {"ath0", 0x89F6, 0, 391, 192},      {"ath0", 0x89F6, 0, 100, 0},
        {"ra0", 0x8BE1, 0x0999, 100, -EOPNOTSUPP}, {"ra0", 0x89F6, 0, 100, -EOPNOTSUPP},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.ifname << " " << std::hex << c.flags << std::dec << " " << c.room);
        std::vector<unsigned char> buf;
        EXPECT_EQ(ask(c.ifname, c.number, c.flags, buf, c.room), c.answered);
        for (size_t i = c.room; i < buf.size(); i++)
            ASSERT_EQ(buf[i], 0xEE) << i;
        if (c.flags == 0x0800) { // two stations in the default scenario, one fits in 48 bytes
            EXPECT_EQ(buf[0], c.room < 88 ? 1 : 2);
        }
    }
}

} // namespace
