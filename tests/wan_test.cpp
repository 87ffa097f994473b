// WAN status: the PPP link against real routes and pid files, the
// detector's markers, and port range lists.
#include <gtest/gtest.h>
#include <unistd.h>

#include "vdev.hpp"
#include "vesk_wan.h"

namespace {

TEST(PppStatus, DaemonGatewayAndRouteCheck)
{
    // A real default route through a link of the device; pppd's pid is ours.
    ASSERT_EQ(vdev::sh("ip link add ppp0 type veth peer name ppp0p && ip link set ppp0 up && "
                       "ip addr add 203.0.113.2/24 dev ppp0 && ip route add default via 203.0.113.1"), 0);
    const std::string me = std::to_string(getpid()), too_long(67, 'x'), longest(66, 'y');
    // A path cut to its 80 bytes would name another daemon's file; the
    // longest name that fits makes "/var/run/" + 66 + ".pid", 79 characters.
    for (const std::string &name : {std::string("pppd"), too_long, longest})
        vdev::put("/var/run/" + name + ".pid", me + "\n");
    vdev::put("/var/run/" + too_long + ".pi", me);
    vdev::clear_journal();
    const struct { const char *pid_name, *ifname; int status; } cases[] = {
        {"pppd", "ppp0", 1}, {"pppd", "eth9", 1}, // the route check's answer is not read
        {"pptp", "ppp0", 0},                      // no pid file
        {nullptr, "ppp0", 0}, {too_long.c_str(), "ppp0", 0},
        {"pppd", nullptr, 2}, {"pppd", "ppp0ppp0ppp0ppp0", 2}, // no route check, or a name too long for one
        {longest.c_str(), "ppp0", 1},
    };
    for (const auto &c : cases)
        EXPECT_EQ(vesk_wan_get_ppp_status(c.pid_name, c.ifname), c.status) << c.pid_name << " " << c.ifname;
    // The route check ran for every valid name, whatever the pid file said.
    const std::string ppp0 = "netstat -rn | grep ppp0";
    EXPECT_EQ(vdev::commands(), (std::vector<std::string>{ppp0, "netstat -rn | grep eth9", ppp0, ppp0, ppp0, ppp0}));
    // No real gateway: the placeholder, or none at all.
    for (auto [word, status] : {std::pair{"4440400A", 2}, {"00000000", 2}, {"016433C6", 1}}) {
        vdev::put("/proc/net/route", std::string("Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\n") +
                                         "ppp0\t00000000\t" + word + "\t0003\t0\t0\t0\t00000000\n");
        EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "ppp0"), status) << word;
    }
    // A route check that cannot be run at all: no shell. Under qemu-user the
    // failed exec shows as a shell that ended with 127, not as a failed spawn.
    if (!vdev::under_qemu()) {
        ASSERT_EQ(vdev::sh("mount --bind /dev/null /bin/sh"), 0);
        EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "ppp0"), 2);
    }
}

TEST(WanDetection, MarkerFiles)
{
    for (auto [markers, mask] : {std::pair{"", 8}, {".dhcp", 9}, {".pppoe .pptp", 14}, {".static ''", 8}}) {
        vdev::sh(std::string("rm -rf /tmp/detector*; for m in ") + markers + "; do touch /tmp/detector$m; done");
        EXPECT_EQ(vesk_wan_detection(), mask) << markers;
    }
}

using ports = std::vector<unsigned short>;

TEST(PortRange, ListToString)
{
    const struct { ports list; int count, dst_size; const char *text; } cases[] = {
        {{80, 0, 443, 0, 1000, 2000}, 6, 64, "80, 443, 1000-2000"}, {{0, 0, 0, 0}, 4, 64, "0"},
        {{80, 0, 0, 90}, 4, 64, "80, 0-90"}, {{1000, 2000}, 2, 5, "1000"}, {{1000, 2000}, 2, 1, ""},
        {{80, 0, 443, 0, 1000, 2000}, 3, 64, "80, 443"}, // odd count: the end behind 443 is not read
        {{80, 0, 0, 9999}, 3, 64, "80"},                  // nor the one behind a start of 0
        {{80, 90}, 0, 64, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        // Exactly count entries on the heap, then the whole row, whose entries
        // behind count must not be read either; exactly dst_size bytes.
        const ports exact(c.list.begin(), c.list.begin() + c.count);
        for (const ports *list : {exact.empty() ? &c.list : &exact, &c.list}) {
            std::vector<char> dst(static_cast<size_t>(c.dst_size) + 1, 'x');
            EXPECT_EQ(vesk_wan_port_range_list_to_string(list->data(), c.count, dst.data(), c.dst_size), 1);
            EXPECT_STREQ(dst.data(), c.text);
            EXPECT_EQ(dst.back(), 'x');
        }
    }
    char dst[8] = "keep";
    unsigned short one = 1;
    EXPECT_EQ(vesk_wan_port_range_list_to_string(nullptr, 2, dst, 8) + vesk_wan_port_range_list_to_string(&one, 1, nullptr, 8), 0);
    EXPECT_EQ(vesk_wan_port_range_list_to_string(&one, 1, dst, 0), 1);
    EXPECT_STREQ(dst, "keep");
}

TEST(PortRange, StringToList)
{
    const struct { const char *text; int count; ports list; } cases[] = {
        {"80, 443, 1000-2000", 6, {80, 0, 443, 0, 1000, 2000}}, {"1-2,3-4", 2, {1, 2}}, {"1-2,3", 3, {1, 2, 3}},
        {"1,2", 2, {1, 0}}, // the "," at the last odd place writes nothing
        {"1,2", 1, {1}}, {"1-2-3-4-5", 3, {1, 2, 3}}, {"70000, 65536-65535", 4, {4464, 0, 0, 65535}},
        {"99999999999999999999", 2, {65535, 0}}, {"abc, x-y", 4, {0, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        // Exactly count entries on the heap, then with a guard entry behind them that must stay as it was.
        for (size_t guard : {0u, 1u}) {
            ports list(static_cast<size_t>(c.count) + guard, 0xEEEE), want = c.list;
            want.resize(list.size(), 0xEEEE);
            EXPECT_EQ(vesk_wan_port_ranger_string_to_list(c.text, list.data(), c.count), 1) << c.text;
            EXPECT_EQ(list, want) << c.text;
        }
    }
    unsigned short keep = 7;
    EXPECT_EQ(vesk_wan_port_ranger_string_to_list(nullptr, &keep, 1) + vesk_wan_port_ranger_string_to_list("1", nullptr, 1), 0);
    EXPECT_EQ(vesk_wan_port_ranger_string_to_list("1", &keep, 0), 1);
    EXPECT_EQ(keep, 7);
}

} // namespace
