#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "vdev.hpp"
#include "vesk_arp.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

constexpr char kHeader[] = "IP address       HW type     Flags       HW address            Mask     Device\n";

// Neighbours in the kernel's own table:
//   192.0.2.20    on br0, its MAC behind port eth2 (static forwarding entry)
//   192.0.2.21    on br0, MAC unknown to the bridge
//   198.51.100.20 on eth1
//   203.0.113.2   on xbr0, a plain veth whose name holds "br"
void make_neighbours()
{
    ASSERT_EQ(vdev::sh("bridge link set dev eth2 learning off"
                       " && bridge fdb add 02:00:00:00:00:14 dev eth2 master static"
                       " && ip neigh add 192.0.2.20 lladdr 02:00:00:00:00:14 dev br0 nud permanent"
                       " && ip neigh add 192.0.2.21 lladdr 02:00:00:00:00:15 dev br0 nud permanent"
                       " && ip link add eth1 type veth peer name eth1p && ip link set eth1 up"
                       " && ip addr add 198.51.100.1/24 dev eth1"
                       " && ip neigh add 198.51.100.20 lladdr 0a:1b:2c:3d:4e:5f dev eth1 nud permanent"
                       " && ip link add xbr0 type veth peer name xbr0p && ip link set xbr0 up"
                       " && ip addr add 203.0.113.1/24 dev xbr0"
                       " && ip neigh add 203.0.113.2 lladdr 02:00:00:00:00:16 dev xbr0 nud permanent"),
              0);
}

TEST(ArpTable, KernelNeighbours)
{
    make_neighbours();
    const struct {
        const char *ip;
        const char *ifname; // null: not found
        const char *macstr;
        const char *err;
    } cases[] = {
        {"192.0.2.20", "eth2", "020000000014", ""},
        {"192.0.2.21", "unknown", "020000000015", ""},
        {"198.51.100.20", "eth1", "0a1b2c3d4e5f", ""},
        {"198.51.100.2", nullptr, "000000000000", ""}, // compared whole, not as a prefix
        {"203.0.113.2", "unknown", "020000000016", "read of forward table failed: Operation not supported\n"},
        {"192.0.2.1", nullptr, "000000000000", ""},
        {"", nullptr, "000000000000", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ip);
        CaptureStderr();
        const char *ifname = vesk_arp_get_ifname_by_ip(c.ip);
        EXPECT_EQ(GetCapturedStderr(), c.err);
        if (c.ifname)
            EXPECT_STREQ(ifname, c.ifname);
        else
            EXPECT_EQ(ifname, nullptr);
        EXPECT_STREQ(vesk_arp_get_macstr_by_ip(c.ip, 0), c.macstr);
    }
    EXPECT_EQ(vesk_arp_get_ifname_by_ip(nullptr), nullptr);
    EXPECT_EQ(vesk_arp_get_macstr_by_ip(nullptr, 1), nullptr);
    EXPECT_EQ(vesk_arp_get_ip_by_macstr(nullptr), nullptr);
    EXPECT_TRUE(vdev::journal().empty()); // no ping without do_ping
    EXPECT_STREQ(vesk_arp_get_macstr_by_ip("192.0.2.20", 1), "020000000014");
    EXPECT_EQ(vdev::journal(), std::vector<std::string>{"ping 192.0.2.20 -c 1"});
}

TEST(ArpTable, IpOfAMacInEitherCase)
{
    make_neighbours();
    const struct {
        const char *macstr;
        const char *ip;
    } cases[] = {
        {"0a1b2c3d4e5f", "198.51.100.20"},
        {"0A1B2C3D4E5F", "198.51.100.20"},
        {"0a1b2c3d4e5f77", "198.51.100.20"}, // 12 characters count
        {"020000000014", "192.0.2.20"},
        {"020000000099", "0.0.0.0"},
        {"0a1b2c3d4e5", "0.0.0.0"}, // too short: never read past its end
        {"", "0.0.0.0"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.macstr);
        std::vector<char> exact(c.macstr, c.macstr + strlen(c.macstr) + 1); // exact size for sanitizers
        EXPECT_STREQ(vesk_arp_get_ip_by_macstr(exact.data()), c.ip);
    }
}

TEST(ArpFile, RowsAsTheFileWritesThem)
{
    vdev::put("/proc/net/arp", std::string(kHeader) +
                                   "192.0.2.2        0x1         0x2         00:1A:2B:3C:4D:5E     *        eth1\n"
                                   "192.0.2.3        0x1         0x0         00:00:00:00:00:00\n"
                                   "192.0.2.4        0x1         0x2         02:00:00:00:00:04     *        ath0\n"
                                   "192.0.2.2        0x1         0x2         02:00:00:00:00:02     *        eth3\n"
                                   "192.0.2.8        0x1         none        02:00:00:00:00:08     *        eth8\n");
    const struct {
        const char *ip;
        const char *ifname;
        const char *macstr;
    } cases[] = {
        {"192.0.2.2", "eth1", "001A2B3C4D5E"}, // first row wins; case as in the file
        {"192.0.2.3", "-", "000000000000"},    // row ends early; incomplete entry
        {"192.0.2.4", "ath0", "020000000004"},
        {"192.0.2.8", "-", ""}, // the scan stops at a column that is no number
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ip);
        EXPECT_STREQ(vesk_arp_get_ifname_by_ip(c.ip), c.ifname);
        EXPECT_STREQ(vesk_arp_get_macstr_by_ip(c.ip, 0), c.macstr);
    }
    // A found incomplete entry comes from the buffer, not the literal.
    EXPECT_EQ(vesk_arp_get_macstr_by_ip("192.0.2.3", 0), vesk_arp_get_macstr_by_ip("192.0.2.4", 0));
    EXPECT_NE(vesk_arp_get_macstr_by_ip("192.0.2.3", 0), vesk_arp_get_macstr_by_ip("192.0.2.99", 0));

    CaptureStderr();
    EXPECT_STREQ(vesk_arp_get_ip_by_macstr("020000000004"), "192.0.2.4");
    EXPECT_EQ(GetCapturedStderr(), "[00:1A:2B:3C:4D:5E] [02:00:00:00:00:04]\n"
                                   "[00:00:00:00:00:00] [02:00:00:00:00:04]\n"
                                   "[02:00:00:00:00:04] [02:00:00:00:00:04]\n");
    EXPECT_STREQ(vesk_arp_get_ip_by_macstr("001a2b3c4d5e"), "192.0.2.2");
}

TEST(ArpFile, HeaderOnlyOrNoTable)
{
    for (bool present : {true, false}) {
        SCOPED_TRACE(present ? "header only" : "no table");
        if (present)
            vdev::put("/proc/net/arp", kHeader);
        else
            vdev::remove("/proc/net/arp");
        CaptureStderr();
        EXPECT_EQ(vesk_arp_get_ifname_by_ip("192.0.2.2"), nullptr);
        EXPECT_STREQ(vesk_arp_get_macstr_by_ip("192.0.2.2", 0), "000000000000");
        EXPECT_STREQ(vesk_arp_get_ip_by_macstr("001122334455"), "0.0.0.0");
        EXPECT_EQ(GetCapturedStderr(), "");
    }
}

TEST(ArpFile, LongLinesAndFields)
{
    // The tail of a line past 128 bytes is no row; a field longer than its
    // column is cut and does not spill into the next one.
    vdev::put("/proc/net/arp", std::string(kHeader) + "192.0.2.5 0x1 0x2 02:00:00:00:00:05 * eth1" +
                                   std::string(100, ' ') + "192.0.2.9 0x1 0x2 02:00:00:00:00:09 * eth9\n" +
                                   "192.0.2.7 0x1 0x2 " + std::string(40, 'A') + " * " + std::string(30, 'e') +
                                   "\n");
    EXPECT_STREQ(vesk_arp_get_ifname_by_ip("192.0.2.5"), "eth1");
    EXPECT_EQ(vesk_arp_get_ifname_by_ip("192.0.2.9"), nullptr);
    EXPECT_STREQ(vesk_arp_get_ifname_by_ip("192.0.2.7"), std::string(15, 'e').c_str());
    EXPECT_STREQ(vesk_arp_get_macstr_by_ip("192.0.2.7", 0), std::string(31, 'A').c_str());
}

// ---- the gratuitous ARP frame on the wire ---------------------------------

// A packet socket on one end of a veth pair, catching ARP frames.
struct capture {
    int fd;
    explicit capture(const char *ifname)
    {
        fd = socket(AF_PACKET, SOCK_RAW, htons(ETH_P_ARP));
        EXPECT_GE(fd, 0);
        sockaddr_ll ll{};
        ll.sll_family = AF_PACKET;
        ll.sll_protocol = htons(ETH_P_ARP);
        ll.sll_ifindex = static_cast<int>(if_nametoindex(ifname));
        EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr *>(&ll), sizeof ll), 0);
    }
    ~capture() { close(fd); }
    // The frames that arrive within wait_ms of each other.
    std::vector<std::vector<unsigned char>> frames(int wait_ms = 2000)
    {
        std::vector<std::vector<unsigned char>> got;
        pollfd p{fd, POLLIN, 0};
        while (poll(&p, 1, got.empty() ? wait_ms : 200) == 1) {
            unsigned char buf[1600];
            ssize_t n = recv(fd, buf, sizeof buf, 0);
            if (n <= 0)
                break;
            got.emplace_back(buf, buf + n);
        }
        return got;
    }
};

std::vector<unsigned char> sys_mac(const char *ifname)
{
    unsigned int b[6];
    std::string text = vdev::read(std::string("/sys/class/net/") + ifname + "/address");
    EXPECT_EQ(sscanf(text.c_str(), "%x:%x:%x:%x:%x:%x", &b[0], &b[1], &b[2], &b[3], &b[4], &b[5]), 6);
    return {b, b + 6};
}

std::vector<unsigned char> expected_frame(const std::vector<unsigned char> &mac, const char *sender,
                                          std::vector<unsigned char> target)
{
    std::vector<unsigned char> f(6, 0xFF);
    f.insert(f.end(), mac.begin(), mac.end());
    f.insert(f.end(), {0x08, 0x06, 0x00, 0x01, 0x08, 0x00, 6, 4, 0x00, 0x02});
    f.insert(f.end(), mac.begin(), mac.end());
    in_addr a;
    inet_pton(AF_INET, sender, &a);
    const auto *b = reinterpret_cast<const unsigned char *>(&a);
    f.insert(f.end(), b, b + 4);
    f.insert(f.end(), 6, 0);
    f.insert(f.end(), target.begin(), target.end());
    f.insert(f.end(), 18, 0);
    return f;
}

TEST(GratArp, FrameOfTheBridgeOnTheWire)
{
    capture lan("lan0");
    CaptureStderr();
    EXPECT_EQ(vesk_send_grat_arp(), 1);
    EXPECT_EQ(GetCapturedStderr(), "");
    auto frames = lan.frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].size(), 60u);
    // The target word 0xFF000000 in the little-endian host's order.
    EXPECT_EQ(frames[0], expected_frame(sys_mac("br0"), "192.0.2.1", {0x00, 0x00, 0x00, 0xFF}));
}

TEST(GratArp, NothingSentWithoutAddressOrBridge)
{
    capture lan("lan0");
    ASSERT_EQ(vdev::sh("ip addr flush dev br0"), 0);
    CaptureStderr();
    EXPECT_EQ(vesk_send_grat_arp(), 0);
    EXPECT_EQ(GetCapturedStderr(), "vesk_send_grat_arp: cannot get ip, quit!\n");
    ASSERT_EQ(vdev::sh("ip link del br0"), 0);
    CaptureStderr();
    EXPECT_EQ(vesk_send_grat_arp(), 0);
    EXPECT_EQ(GetCapturedStderr(), "vesk_send_grat_arp: cannot get MAC, quit!\n");
    EXPECT_TRUE(lan.frames(300).empty());
}

TEST(Arpping, OneFramePerCall)
{
    // ethernet12345 has the longest name that the send address can carry.
    ASSERT_EQ(vdev::sh("ip link add ethernet12345 type veth peer name cap13"
                       " && ip link set ethernet12345 up && ip link set cap13 up"),
              0);
    const unsigned char mac[6] = {0x02, 0xFE, 0xDC, 0xBA, 0x98, 0x76};
    const std::vector<unsigned char> mac_v(mac, mac + 6);
    const struct {
        const char *send_on, *catch_on;
        const char *sender, *target;
    } cases[] = {
        {"eth2", "lan0", "198.51.100.7", "198.51.100.99"},
        {"ethernet12345", "cap13", "203.0.113.1", "255.255.255.255"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.send_on);
        capture cap(c.catch_on);
        in_addr target;
        inet_pton(AF_INET, c.target, &target);
        EXPECT_EQ(arpping(target.s_addr, inet_addr(c.sender), mac, c.send_on), 1);
        auto frames = cap.frames();
        ASSERT_EQ(frames.size(), 1u);
        const auto *t = reinterpret_cast<const unsigned char *>(&target);
        EXPECT_EQ(frames[0], expected_frame(mac_v, c.sender, {t, t + 4}));
    }
}

TEST(Arpping, Failures)
{
    const unsigned char mac[6] = {0x02, 0, 0, 0, 0, 1};
    const struct {
        const char *name;
        const unsigned char *mac;
        const char *ifname;
        int result;
        const char *message;
    } cases[] = {
        {"absent interface", mac, "nosuch0", 1, "ARP send fail\n"},
        {"name beyond sa_data", mac, "ethernet123456", -1, "arpping: interface name too long: ethernet123456\n"},
        {"null interface", mac, nullptr, -1, "arpping: input is NULL!\n"},
        {"null MAC", nullptr, "eth2", -1, "arpping: input is NULL!\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        CaptureStderr();
        EXPECT_EQ(arpping(0, 0, c.mac, c.ifname), c.result);
        EXPECT_EQ(GetCapturedStderr(), c.message);
    }
}

TEST(Arpping, NoSocket)
{
    auto o = vdev::in_child([] {
        const rlimit none{0, 0};
        setrlimit(RLIMIT_NOFILE, &none);
        const unsigned char mac[6] = {0x02, 0, 0, 0, 0, 1};
        _exit(arpping(0, 0, mac, "eth2") == -1 ? 0 : 1);
    });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "Error: Could not open raw socket");
}

} // namespace
