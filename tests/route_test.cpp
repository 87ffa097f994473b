// Gateways read back from the kernel's route table, and DNS servers from
// the resolver files.

#include "net_helpers.hpp"
#include "vesk_if.h"

namespace {

constexpr char kHeader[] = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n";

TEST(Gateway, RealRouteTable)
{
    // Two veth links with an address, up; no default route yet.
    ASSERT_EQ(vdev::sh("for l in wan0:198.51.100.2 eth3:203.0.113.2; do n=${l%%:*}; ip link add $n type veth peer"
                       " name ${n}p && ip link set $n up && ip link set ${n}p up && ip addr add ${l#*:}/24 dev $n"
                       " || exit 1; done"), 0);
    EXPECT_STREQ(vesk_if_get_default_gateway(), "---");
    ASSERT_EQ(vdev::sh("ip route add 192.0.2.128/25 via 203.0.113.254 dev eth3"
                       " && ip route add default dev wan0 metric 5" // point-to-point style: no gateway
                       " && ip route add default via 198.51.100.1 dev wan0 metric 10" // the first of two
                       " && ip route add default via 198.51.100.9 dev wan0 metric 20"), 0);
    EXPECT_STREQ(vesk_if_get_default_gateway(), "198.51.100.1");
    // Any route with a gateway counts; names match exactly.
    for (auto [ifname, gateway] : {std::pair{"wan0", "198.51.100.1"}, {"eth3", "203.0.113.254"}, {"br0", "---"},
                                   {"wan", "---"}, {"", "---"}})
        EXPECT_STREQ(vesk_if_get_gateway(ifname), gateway) << ifname;
}

TEST(Gateway, TableFilesAndBuffers)
{
    const std::string h = kHeader;
    const struct { const char *name; std::string table; const char *ifname, *gateway, *default_gateway; } cases[] = {
        {"empty file", "", "eth0", "---", "---"},
        {"line short of eight columns is skipped",
         h + "eth0 00000000 0201A8C0 0003 0 0 0\n" + "ppp0 00000000 443322C0 0003 0 0 0 0\n", "eth0", "---",
         "192.34.51.68"},
        {"interface name longer than a kernel's",
         h + "averyveryverylon 00000000 0301A8C0 0003 0 0 0 00000000\n" +
             "averyveryverylo 00000000 0401A8C0 0003 0 0 0 00000000\n",
         "averyveryverylon", "---", "192.168.1.4"},
        {"overlong line does not leak into the next",
         h + "eth0 00000000 00000000 0003 0 0 0 00000000" + std::string(300, ' ') +
             "eth1 00000000 0501A8C0 0003 0 0 0 00000000\n",
         "eth1", "---", "---"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/proc/net/route", c.table);
        EXPECT_STREQ(vesk_if_get_gateway(c.ifname), c.gateway);
        EXPECT_STREQ(vesk_if_get_default_gateway(), c.default_gateway);
    }
    // Two buffers: one for an interface's gateway, one for the default; a
    // null name leaves the last answer alone. A route with a gateway ahead of
    // the default is no default.
    vdev::put("/proc/net/route", std::string(kHeader) + "eth1 0000A8C0 0201A8C0 0001 0 0 0 0000FFFF\n" +
                                     "eth0 00000000 0101A8C0 0003 0 0 0 00000000\n");
    char *first = vesk_if_get_gateway("eth0"), *def = vesk_if_get_default_gateway();
    EXPECT_EQ(vesk_if_get_gateway("eth1"), first);
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_if_get_gateway(nullptr), nullptr); }),
              "vesk_if_get_gateway: interface = NULL!\n");
    EXPECT_EQ(std::string(first) + " " + def, "192.168.1.2 192.168.1.1");
}

TEST(Dns, ResolverFile)
{
    // The answers for the index 0, 1, 2 and 3, joined by blanks.
    const struct { const char *name; std::string file; const char *answers; } cases[] = {
        {"placeholder keeps its place in the count", "nameserver 10.64.64.68\nnameserver 1.1.1.1\n",
         "1.1.1.1 --- 1.1.1.1 1.1.1.1"},
        {"0.0.0.0 and IPv6 are no IPv4 servers",
         "nameserver 0.0.0.0\nnameserver 2001:db8::1\nnameserver 192.0.2.53 # lan\n", "192.0.2.53 --- --- 192.0.2.53"},
        {"other lines are not counted",
         "# nameserver 9.9.9.9\nsearch lan\n\n   \noptions ndots:1\n\tnameserver\t203.0.113.1\nnameservers 203.0.113.9\n",
         "203.0.113.1 203.0.113.1 --- 203.0.113.1"},
        {"nameserver without address is counted, and repeats nothing",
         "nameserver 198.51.100.1\nnameserver\nnameserver   \nnameserver 198.51.100.3\n",
         "198.51.100.1,198.51.100.3 198.51.100.1 --- 198.51.100.1,198.51.100.3"},
        {"address of 80 characters is dropped", "nameserver " + std::string(80, '1') + "\nnameserver 192.0.2.1\n",
         "192.0.2.1 --- 192.0.2.1 192.0.2.1"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/etc/resolv.conf", c.file);
        std::string got = vesk_if_get_dns_full(0, nullptr);
        for (int index = 1; index <= 3; index++)
            got = got + " " + vesk_if_get_dns_full(index, nullptr);
        EXPECT_EQ(got, c.answers);
        EXPECT_EQ(vesk_if_get_dns(), got.substr(0, got.find(' ')));
    }
    // Ten servers of 15 characters need 159 bytes: those that do not fit
    // whole in the 128 are left out (eight servers and seven commas). One
    // of 16 characters before the eighth would overrun by a byte.
    std::string file, all;
    for (int i = 0; i < 10; i++) {
        const std::string addr = "255.255.255.25" + std::to_string(i);
        file += (i == 7 ? "nameserver 2555555555555555\n" : "") + ("nameserver " + addr + "\n");
        all += i < 8 ? (i ? "," : "") + addr : "";
    }
    vdev::put("/etc/resolv.conf", file);
    EXPECT_EQ(vesk_if_get_dns(), all);
    EXPECT_STREQ(vesk_if_get_dns_full(2, nullptr), "255.255.255.251");
}

TEST(Dns, SiblingFilesAndIpv6)
{
    vdev::put("/etc/resolv.conf", "nameserver 192.0.2.1\n");
    vdev::put("/etc/resolv.conf.wan", "nameserver 198.51.100.53\nnameserver 203.0.113.53\n");
    vdev::put("/etc/resolv_ipv6.conf", "nameserver 2001:db8::53\nnameserver 10.64.64.68\nnameserver 192.0.2.9\n");
    EXPECT_STREQ(vesk_if_get_dns_full(2, "wan"), "203.0.113.53");
    EXPECT_STREQ(vesk_if_get_dns_full(0, "lan"), "---"); // no fallback to the plain file
    EXPECT_STREQ(vesk_if_get_v6_dns(0), "2001:db8::53,192.0.2.9");
    EXPECT_STREQ(__vesk_if_get_dns_full(nullptr, 0, nullptr, 1), "---");
    // A name cut to fit its 80 bytes would open some other file.
    std::string path = "/tmp/" + std::string(74, 'r');
    vdev::put(path, "nameserver 192.0.2.2\n");
    EXPECT_STREQ(__vesk_if_get_dns_full(path.c_str(), 0, nullptr, 0), "192.0.2.2");
    EXPECT_STREQ(__vesk_if_get_dns_full(path.c_str(), 0, "w", 0), "---");
    // One buffer for the family: the next call replaces the text.
    char *v4 = vesk_if_get_dns();
    EXPECT_STREQ(v4, "192.0.2.1");
    EXPECT_EQ(vesk_if_get_v6_dns(0), v4);
    EXPECT_STREQ(v4, "2001:db8::53,192.0.2.9");
}

} // namespace
