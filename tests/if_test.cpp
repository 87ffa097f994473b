#include <gtest/gtest.h>
#include <net/if.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <sys/utsname.h>

#include <string>

#include "vdev.hpp"
#include "vesk_if.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// Interfaces of the test LAN besides the scenario's br0 (192.0.2.1/24) and
// its port eth2 (up, no address):
//   wan0     198.51.100.77/27, MTU 1400, down, MAC 02:a0:b1:c2:d3:e4
//   ppp9     203.0.113.1 peer 203.0.113.2, up, peer link down (no carrier)
//   vethfifteen1234   15 characters, the longest name there is
void make_interfaces()
{
    ASSERT_EQ(vdev::sh("ip link add wan0 address 02:a0:b1:c2:d3:e4 mtu 1400 type veth peer name wan0p"
                       " && ip addr add 198.51.100.77/27 dev wan0"
                       " && ip link add ppp9 type veth peer name ppp9p"
                       " && ip addr add 203.0.113.1 peer 203.0.113.2 dev ppp9 && ip link set ppp9 up"
                       " && ip link add vethfifteen1234 type veth peer name vethfifteenpeer"),
              0);
}

std::string sys_address(const std::string &ifname)
{
    std::string text = vdev::read("/sys/class/net/" + ifname + "/address");
    return text.substr(0, text.find('\n'));
}

std::string mac_text(const unsigned char *mac)
{
    char text[18];
    snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return text;
}

TEST(IfQuery, AddressTexts)
{
    make_interfaces();
    const struct {
        const char *ifname;
        const char *ip, *dst, *mask, *subnet;
    } cases[] = {
        {"br0", "192.0.2.1", "192.0.2.1", "255.255.255.0", "192.0.2.0"},
        {"wan0", "198.51.100.77", "198.51.100.77", "255.255.255.224", "198.51.100.64"},
        {"ppp9", "203.0.113.1", "203.0.113.2", "255.255.255.255", "203.0.113.1"},
        {"eth2", "---", "---", "---", "---"},           // no address
        {"nosuch0", "---", "---", "---", "---"},        // absent
        {"vethfifteen1234", "---", "---", "---", "---"}, // longest name, no address
        {"vethfifteen12345", "---", "---", "---", "---"}, // too long: never cut to an existing name
        {"", "---", "---", "---", "---"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifname);
        CaptureStderr();
        EXPECT_STREQ(vesk_if_get_ip(c.ifname), c.ip);
        EXPECT_STREQ(vesk_if_get_dst_ip(c.ifname), c.dst);
        EXPECT_STREQ(vesk_if_get_mask(c.ifname), c.mask);
        EXPECT_STREQ(vesk_if_get_subnet(c.ifname), c.subnet);
        EXPECT_EQ(GetCapturedStderr(), "");
    }
}

TEST(IfQuery, EachTextHasItsOwnBuffer)
{
    make_interfaces();
    const char *ip = vesk_if_get_ip("br0");
    const char *mask = vesk_if_get_mask("br0");
    EXPECT_EQ(vesk_if_get_ip("wan0"), ip); // the same buffer, overwritten
    EXPECT_STREQ(ip, "198.51.100.77");
    EXPECT_STREQ(mask, "255.255.255.0");
}

TEST(IfQuery, NumbersAndFlags)
{
    make_interfaces();
    const struct {
        const char *ifname;
        int exists, ip_ready, up, mtu;
    } cases[] = {
        {"br0", 1, 1, 1, 1500},
        {"eth2", 1, 0, 1, 1500},
        {"wan0", 1, 1, 0, 1400}, // addressed but down
        {"ppp9", 1, 1, 1, 1500}, // up without carrier
        {"lo", 1, 1, 1, 65536},
        {"vethfifteen1234", 1, 0, 0, 1500},
        {"vethfifteen12345", 0, 0, 0, 0},
        {"nosuch0", 0, 0, 0, 0},
        {"", 0, 0, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifname);
        CaptureStderr();
        EXPECT_EQ(vesk_if_is_existed(c.ifname), c.exists);
        EXPECT_EQ(vesk_if_is_ip_ready(c.ifname), c.ip_ready);
        EXPECT_EQ(vesk_if_is_up(c.ifname), c.up);
        EXPECT_EQ(vesk_if_get_mtu(c.ifname), c.mtu);
        EXPECT_EQ(vesk_if_get_index(c.ifname), c.exists ? static_cast<int>(if_nametoindex(c.ifname)) : 0);
        EXPECT_EQ(GetCapturedStderr(), "");
    }
}

TEST(IfQuery, HardwareAddress)
{
    make_interfaces();
    for (const char *ifname : {"br0", "eth2", "wan0", "vethfifteen1234"}) {
        unsigned char mac[6] = {};
        EXPECT_EQ(vesk_if_get_hw_addr(ifname, mac), 1) << ifname;
        EXPECT_EQ(mac_text(mac), sys_address(ifname)) << ifname;
    }
    // Failures leave the caller's bytes alone.
    for (const char *ifname : {"nosuch0", "vethfifteen12345"}) {
        unsigned char keep[6] = {1, 2, 3, 4, 5, 6};
        EXPECT_EQ(vesk_if_get_hw_addr(ifname, keep), 0) << ifname;
        EXPECT_EQ(mac_text(keep), "01:02:03:04:05:06");
    }
    EXPECT_EQ(vesk_if_get_hw_addr("br0", nullptr), 0);
}

TEST(IfQuery, NullNameIsReportedByEachQuery)
{
    CaptureStderr();
    EXPECT_EQ(vesk_if_get_ip(nullptr), nullptr);
    EXPECT_EQ(vesk_if_get_dst_ip(nullptr), nullptr);
    EXPECT_EQ(vesk_if_get_mask(nullptr), nullptr);
    EXPECT_EQ(vesk_if_get_subnet(nullptr), nullptr);
    unsigned char mac[6];
    int sum = vesk_if_get_hw_addr(nullptr, mac) + vesk_if_is_existed(nullptr) + vesk_if_is_ip_ready(nullptr) +
              vesk_if_is_up(nullptr) + vesk_if_get_index(nullptr) + vesk_if_get_mtu(nullptr) +
              vesk_if_set_lan_state(nullptr, 1); // the last one silently
    EXPECT_EQ(sum, 0);
    std::string want;
    for (const char *f : {"get_ip", "get_dst_ip", "get_mask", "get_subnet", "get_hw_addr", "is_existed",
                          "is_ip_ready", "is_up", "get_index", "get_mtu"})
        want += std::string("vesk_if_") + f + ": interface is NULL!\n";
    EXPECT_EQ(GetCapturedStderr(), want);
}

TEST(IfQuery, NoSocket)
{
    // No descriptor can be opened: only the hardware-address queries and the
    // LAN-state request say so.
    auto o = vdev::in_child([] {
        const rlimit none{0, 0};
        setrlimit(RLIMIT_NOFILE, &none);
        unsigned char mac[6];
        bool ok = vesk_if_get_hw_addr("br0", mac) == 0 && vesk_if_is_existed("br0") == 0 &&
                  strcmp(vesk_if_get_ip("br0"), "---") == 0 && strcmp(vesk_if_get_subnet("br0"), "---") == 0 &&
                  vesk_if_is_up("br0") == 0 && vesk_if_get_mtu("br0") == 0 && vesk_if_set_lan_state("br0", 1) == 0;
        _exit(ok ? 0 : 1);
    });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "socket(): Too many open files\n"
                     "socket(): Too many open files\n"
                     "vesk_if_set_lan_state: socket error!\n");
}

TEST(IfLanState, AbsentDeviceIsNoError)
{
    // No driver here knows the private request: an absent device gives
    // ENODEV, a present one refuses the request.
    const struct {
        const char *ifname;
        int result;
        const char *message;
    } cases[] = {
        {"nosuch0", 1, ""},
        {"eth2", 0, "vesk_if_set_lan_state: SIOCDEVSTATE on 'eth2' failed: Operation not supported\n"},
        {"br0", 0, "vesk_if_set_lan_state: SIOCDEVSTATE on 'br0' failed: Operation not supported\n"},
        {"vethfifteen12345", 0,
         "vesk_if_set_lan_state: SIOCDEVSTATE on 'vethfifteen12345' failed: File name too long\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifname);
        CaptureStderr();
        EXPECT_EQ(vesk_if_set_lan_state(c.ifname, 1), c.result);
        EXPECT_EQ(GetCapturedStderr(), c.message);
    }
}

TEST(Hostname, KernelAndFile)
{
    const struct {
        const char *hostname;
        const char *kernel;
        const char *file;
    } cases[] = {
        {"ap-kitchen", "ap-kitchen", "ap-kitchen\n"},
        {"", "localhost.localdomain", "\n"},
        {nullptr, "localhost.localdomain", "\n"},
        {"x", "x", "x\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.hostname ? c.hostname : "(null)");
        vdev::put("/etc/hostname", "old\n");
        EXPECT_EQ(vesk_net_set_hostname(c.hostname), 0);
        utsname u;
        ASSERT_EQ(uname(&u), 0);
        EXPECT_STREQ(u.nodename, c.kernel);
        EXPECT_EQ(vdev::read("/etc/hostname"), c.file);
    }
    // The command's failure is passed on.
    ASSERT_EQ(vdev::sh("ln -sf /no/such/dir/hostname /etc/hostname"), 0);
    EXPECT_NE(vesk_net_set_hostname("ap"), 0);
}

TEST(HostIp, FirstAddressOrLastSuccess)
{
    vdev::put("/etc/hosts", "127.0.0.1 localhost\n"
                            "203.0.113.5 printer.lan\n"
                            "2001:db8::5 six.lan\n");
    char *buf = vesk_get_host_ip_by_name("no-such-host.invalid", AF_INET);
    EXPECT_STREQ(buf, ""); // nothing resolved yet
    const struct {
        const char *node;
        int family;
        const char *text; // after the call; a failure keeps the previous one
        bool fails;
    } cases[] = {
        {"printer.lan", AF_INET, "203.0.113.5", false},
        {"six.lan", AF_INET6, "2001:db8::5", false},
        {"no-such-host.invalid", AF_UNSPEC, "2001:db8::5", true},
        {"printer.lan", AF_UNSPEC, "203.0.113.5", false},
        {"six.lan", AF_INET, "203.0.113.5", true},
        {"198.51.100.20", AF_INET, "198.51.100.20", false},
        {nullptr, AF_INET, "198.51.100.20", true},
        {"printer.lan", 12345, "198.51.100.20", true}, // no such family
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.node ? c.node : "(null)");
        CaptureStderr();
        EXPECT_EQ(vesk_get_host_ip_by_name(c.node, c.family), buf);
        std::string err = GetCapturedStderr();
        EXPECT_STREQ(buf, c.text);
        if (c.fails)
            EXPECT_EQ(err.rfind("getaddrinfo: ", 0), 0u) << err;
        else
            EXPECT_EQ(err, "");
    }
}

} // namespace
