#include <net/if.h>
#include <sys/socket.h>
#include <sys/utsname.h>

#include <array>

#include "net_helpers.hpp"
#include "vesk_if.h"

namespace {

TEST(IfQuery, AddressesNumbersAndFlags)
{
    // Besides the scenario's br0 (192.0.2.1/24) and its port eth2 (up, no address):
    // wan0 198.51.100.77/27, MTU 1400, down; ppp9 203.0.113.1 peer 203.0.113.2, up
    // without carrier; vethfifteen1234, the longest name there is.
    ASSERT_EQ(vdev::sh("ip link add wan0 address 02:a0:b1:c2:d3:e4 mtu 1400 type veth peer name wan0p"
                       " && ip addr add 198.51.100.77/27 dev wan0 && ip link add ppp9 type veth peer name ppp9p"
                       " && ip addr add 203.0.113.1 peer 203.0.113.2 dev ppp9 && ip link set ppp9 up"
                       " && ip link add vethfifteen1234 type veth peer name vethfifteenpeer"), 0);
    // Per name: whether it exists; address, destination, netmask, subnet, has an address, up, MTU.
    const struct { const char *ifname; int exists; const char *answers; } cases[] = {
        {"br0", 1, "192.0.2.1 192.0.2.1 255.255.255.0 192.0.2.0 1 1 1500"},
        {"wan0", 1, "198.51.100.77 198.51.100.77 255.255.255.224 198.51.100.64 1 0 1400"}, // down
        {"ppp9", 1, "203.0.113.1 203.0.113.2 255.255.255.255 203.0.113.1 1 1 1500"},        // no carrier
        {"eth2", 1, "--- --- --- --- 0 1 1500"}, {"vethfifteen1234", 1, "--- --- --- --- 0 0 1500"},
        {"vethfifteen12345", 0, "--- --- --- --- 0 0 0"}, // too long: never cut to an existing name
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifname);
        const char *n = c.ifname;
        char got[160];
        EXPECT_EQ(stderr_of([&] {
                      snprintf(got, sizeof got, "%s %s %s %s %d %d %d", vesk_if_get_ip(n), vesk_if_get_dst_ip(n),
                               vesk_if_get_mask(n), vesk_if_get_subnet(n), vesk_if_is_ip_ready(n), vesk_if_is_up(n),
                               vesk_if_get_mtu(n));
                      EXPECT_EQ(vesk_if_is_existed(n), c.exists);
                      EXPECT_EQ(vesk_if_get_index(n), c.exists ? (int)if_nametoindex(n) : 0);
                  }), "");
        EXPECT_STREQ(got, c.answers);
        // A failure leaves the caller's bytes alone.
        const std::vector<unsigned char> keep = {1, 2, 3, 4, 5, 6};
        auto mac = keep;
        if (strcmp(n, "ppp9") != 0) {
            EXPECT_EQ(vesk_if_get_hw_addr(n, mac.data()), c.exists);
            EXPECT_EQ(mac, c.exists ? sys_mac(n) : keep);
        }
    }
    EXPECT_EQ(vesk_if_get_hw_addr("br0", nullptr), 0);
}

TEST(IfQuery, NullNameAndNoSocket)
{
    std::string want;
    for (const char *f : {"get_ip", "get_dst_ip", "get_mask", "get_subnet", "get_hw_addr", "is_existed",
                          "is_ip_ready", "is_up", "get_index", "get_mtu"})
        want += std::string("vesk_if_") + f + ": interface is NULL!\n";
    EXPECT_EQ(stderr_of([] {
                  EXPECT_TRUE(!vesk_if_get_ip(nullptr) && !vesk_if_get_dst_ip(nullptr) && !vesk_if_get_mask(nullptr) &&
                              !vesk_if_get_subnet(nullptr));
                  unsigned char mac[6];
                  // A braced list calls them in order, as the messages expect.
                  EXPECT_EQ((std::array{vesk_if_get_hw_addr(nullptr, mac), vesk_if_is_existed(nullptr),
                                        vesk_if_is_ip_ready(nullptr), vesk_if_is_up(nullptr), vesk_if_get_index(nullptr),
                                        vesk_if_get_mtu(nullptr), vesk_if_set_lan_state(nullptr, 1)}), // the last silently
                            (std::array<int, 7>{}));
              }), want);
    // No descriptor can be opened: only the hardware-address query and the
    // LAN-state request say so.
    auto o = without_descriptors([] {
        unsigned char mac[6];
        return vesk_if_get_hw_addr("br0", mac) == 0 && vesk_if_is_existed("br0") == 0 &&
               strcmp(vesk_if_get_ip("br0"), "---") == 0 && strcmp(vesk_if_get_subnet("br0"), "---") == 0 &&
               vesk_if_is_up("br0") == 0 && vesk_if_get_mtu("br0") == 0 && vesk_if_set_lan_state("br0", 1) == 0;
    });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "socket(): Too many open files\nsocket(): Too many open files\n"
                     "vesk_if_set_lan_state: socket error!\n");
}

TEST(IfLanState, AbsentDeviceIsNoError)
{
    // The Ethernet port's driver takes the request; an absent device gives
    // ENODEV, one without that driver refuses it.
    const std::string failed = "vesk_if_set_lan_state: SIOCDEVSTATE on ";
    const struct { const char *ifname; int result; std::string message; } cases[] = {
        {"nosuch0", 1, ""}, {"eth2", 1, ""}, {"br0", 0, failed + "'br0' failed: Operation not supported\n"},
        {"vethfifteen12345", 0, failed + "'vethfifteen12345' failed: File name too long\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_if_set_lan_state(c.ifname, 1), c.result); }), c.message);
    EXPECT_EQ(vesk_if_set_lan_state("eth2", 0x12345678), 1);
    EXPECT_EQ(vdev::ioctls(), (std::vector<std::string>{"eth2 lanstate state=1", "eth2 lanstate state=305419896"}));
}

TEST(Hostname, KernelAndFile)
{
    for (auto [name, kernel] : {std::pair{"ap-kitchen", "ap-kitchen"}, {"", "localhost.localdomain"},
                                {nullptr, "localhost.localdomain"}}) {
        vdev::put("/etc/hostname", "old\n");
        EXPECT_EQ(vesk_net_set_hostname(name), 0);
        utsname u;
        EXPECT_STREQ(uname(&u) == 0 ? u.nodename : "", kernel);
        EXPECT_EQ(vdev::read("/etc/hostname"), name && *name ? std::string(name) + "\n" : "\n");
    }
    // The command's failure is passed on.
    ASSERT_EQ(vdev::sh("ln -sf /no/such/dir/hostname /etc/hostname"), 0);
    EXPECT_NE(vesk_net_set_hostname("ap"), 0);
}

TEST(HostIp, FirstAddressOrLastSuccess)
{
    vdev::put("/etc/hosts", "127.0.0.1 localhost\n203.0.113.5 printer.lan\n2001:db8::5 six.lan\n");
    char *buf = vesk_get_host_ip_by_name("no-such-host.invalid", AF_INET);
    EXPECT_STREQ(buf, ""); // nothing resolved yet
    // The text after the call: a failure keeps the previous one.
    const struct { const char *node; int family; const char *text; bool fails; } cases[] = {
        {"printer.lan", AF_INET, "203.0.113.5", false}, {"six.lan", AF_INET6, "2001:db8::5", false},
        {"six.lan", AF_INET, "2001:db8::5", true}, {nullptr, AF_INET, "2001:db8::5", true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.node ? c.node : "(null)");
        std::string err = stderr_of([&] { EXPECT_EQ(vesk_get_host_ip_by_name(c.node, c.family), buf); });
        EXPECT_STREQ(buf, c.text);
        EXPECT_TRUE(c.fails ? err.rfind("getaddrinfo: ", 0) == 0 : err.empty()) << err;
    }
}

} // namespace
