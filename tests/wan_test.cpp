// WAN status: the PPP link against real routes and pid files, the
// detector's markers, and port range lists.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "vdev.hpp"
#include "vesk_wan.h"

namespace {

// A process number that no process has any more.
pid_t dead_pid()
{
    pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return child;
}

void set_route_table(const char *gateway_word)
{
    vdev::put("/proc/net/route", std::string("Iface\tDestination\tGateway\tFlags\tRefCnt\tUse\tMetric\tMask\n") +
                                     "ppp0\t00000000\t" + gateway_word + "\t0003\t0\t0\t0\t00000000\n");
}

TEST(PppStatus, DaemonGatewayAndRouteCheck)
{
    // A real default route through a link of the device.
    ASSERT_EQ(vdev::sh("ip link add ppp0 type veth peer name ppp0p && ip link set ppp0 up && "
                       "ip addr add 203.0.113.2/24 dev ppp0 && ip route add default via 203.0.113.1"),
              0);
    vdev::put("/var/run/pppd.pid", std::to_string(getpid()) + "\n");
    vdev::put("/var/run/gone.pid", std::to_string(dead_pid()) + "\n");
    vdev::clear_journal();
    // A path cut to its 80 bytes would name another daemon's file.
    const std::string too_long(67, 'x');
    vdev::put("/var/run/" + too_long + ".pid", std::to_string(getpid()));
    vdev::put("/var/run/" + too_long + ".pi", std::to_string(getpid()));
    const struct {
        const char *name;
        const char *pid_name, *ifname;
        int status;
    } cases[] = {
        {"daemon alive, real gateway", "pppd", "ppp0", 1},
        {"the route check's answer is not read", "pppd", "eth9", 1},
        {"daemon gone", "gone", "ppp0", 0},
        {"no pid file", "pptp", "ppp0", 0},
        {"null pid name", nullptr, "ppp0", 0},
        {"pid name too long for its path", too_long.c_str(), "ppp0", 0},
        {"null interface: no route check", "pppd", nullptr, 2},
        {"interface name too long for a route check", "pppd", "ppp0ppp0ppp0ppp0", 2},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(vesk_wan_get_ppp_status(c.pid_name, c.ifname), c.status);
    }
    // The tool ran for every valid name, whatever the pid file said.
    EXPECT_EQ(vdev::journal(), std::vector<std::string>(6, "netstat -rn"));

    // The longest name that fits: "/var/run/" + 66 + ".pid" is 79 characters.
    std::string longest(66, 'y');
    vdev::put("/var/run/" + longest + ".pid", std::to_string(getpid()));
    EXPECT_EQ(vesk_wan_get_ppp_status(longest.c_str(), "ppp0"), 1);

    // Shell text in an interface name stays text.
    vdev::clear_journal();
    EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "a;touch x"), 1);
    EXPECT_FALSE(vdev::exists("x"));
    EXPECT_FALSE(vdev::exists("/x"));

    // No real gateway: the placeholder, or none at all.
    set_route_table("4440400A");
    EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "ppp0"), 2);
    EXPECT_EQ(vesk_wan_get_ppp_status("gone", "ppp0"), 0);
    set_route_table("00000000");
    EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "ppp0"), 2);
    set_route_table("016433C6");
    EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "ppp0"), 1);

    // A route check that cannot be run at all: no shell.
    ASSERT_EQ(vdev::sh("mount --bind /dev/null /bin/sh"), 0);
    EXPECT_EQ(vesk_wan_get_ppp_status("pppd", "ppp0"), 2);
}

TEST(WanDetection, MarkerFiles)
{
    const struct {
        std::vector<const char *> markers;
        int mask;
    } cases[] = {
        {{}, 8},
        {{"/tmp/detector.dhcp"}, 9},
        {{"/tmp/detector.pppoe", "/tmp/detector.pptp"}, 14},
        {{"/tmp/detector.dhcp", "/tmp/detector.pppoe", "/tmp/detector.pptp"}, 15},
        {{"/tmp/detector.static", "/tmp/detector"}, 8},
    };
    for (const auto &c : cases) {
        vdev::sh("rm -rf /tmp/detector*");
        for (const char *m : c.markers)
            vdev::put(m, "");
        EXPECT_EQ(vesk_wan_detection(), c.mask) << c.markers.size();
    }
}

using ports = std::vector<unsigned short>;

TEST(PortRange, ListToString)
{
    const struct {
        ports list;
        int count, dst_size;
        const char *text;
    } cases[] = {
        {{80, 0, 443, 0, 1000, 2000}, 6, 64, "80, 443, 1000-2000"},
        {{0, 0, 0, 0}, 4, 64, "0"},
        {{80, 0, 0, 90}, 4, 64, "80, 0-90"},
        {{1000, 2000}, 2, 5, "1000"},
        {{1000, 2000}, 2, 6, "1000-"},
        {{1000, 2000}, 2, 1, ""},
        {{65535, 65535}, 2, 64, "65535-65535"},
        {{80, 0, 0, 0, 443, 0}, 6, 64, "80, 443"},
        {{80, 0, 443, 0, 1000, 2000}, 3, 64, "80, 443"}, // odd count: the end behind 443 is not read
        {{80, 0, 0, 9999}, 3, 64, "80"},                  // nor the one behind a start of 0
        {{80, 90}, 1, 64, "80"},
        {{80, 90}, 0, 64, ""},
        {{80, 90}, -2, 64, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        // Exactly count entries on the heap and exactly dst_size bytes.
        std::vector<unsigned short> list(c.list.begin(), c.list.begin() + std::max(c.count, 0));
        std::vector<char> dst(static_cast<size_t>(c.dst_size) + 1, 'x');
        const unsigned short *entries = list.empty() ? c.list.data() : list.data();
        EXPECT_EQ(vesk_wan_port_range_list_to_string(entries, c.count, dst.data(), c.dst_size), 1);
        EXPECT_STREQ(dst.data(), c.text);
        EXPECT_EQ(dst.back(), 'x');
    }
    char dst[8] = "keep";
    EXPECT_EQ(vesk_wan_port_range_list_to_string(nullptr, 2, dst, 8), 0);
    EXPECT_STREQ(dst, "keep");
    unsigned short one = 1;
    EXPECT_EQ(vesk_wan_port_range_list_to_string(&one, 1, nullptr, 8), 0);
    EXPECT_EQ(vesk_wan_port_range_list_to_string(&one, 1, dst, 0), 1);
    EXPECT_STREQ(dst, "keep");
}

TEST(PortRange, StringToList)
{
    const struct {
        const char *text;
        int count;
        ports list;
    } cases[] = {
        {"80, 443, 1000-2000", 6, {80, 0, 443, 0, 1000, 2000}},
        {"80,90", 4, {80, 0, 90, 0}},
        {"80-90", 2, {80, 90}},
        {"80-90, 100", 4, {80, 90, 100, 0}},
        {"1-2,3-4", 2, {1, 2}},
        {"1-2,3", 3, {1, 2, 3}},
        {"1,2", 2, {1, 0}}, // the "," at the last odd place writes nothing
        {"1,2", 1, {1}},
        {"1-2-3-4-5", 3, {1, 2, 3}},
        {"70000, 65536-65535", 4, {4464, 0, 0, 65535}},
        {"99999999999999999999", 2, {65535, 0}},
        {"abc, x-y", 4, {0, 0, 0, 0}},
        {"", 2, {0, 0}},
        {"0, 0-90", 4, {0, 0, 0, 90}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        std::vector<unsigned short> list(static_cast<size_t>(c.count), 0xEEEE);
        EXPECT_EQ(vesk_wan_port_ranger_string_to_list(c.text, list.data(), c.count), 1);
        EXPECT_EQ(list, c.list);
    }
    // Text and list agree both ways.
    ports list = {80, 0, 443, 0, 1000, 2000};
    char text[64];
    ASSERT_EQ(vesk_wan_port_range_list_to_string(list.data(), 6, text, sizeof text), 1);
    ports back(6, 1);
    ASSERT_EQ(vesk_wan_port_ranger_string_to_list(text, back.data(), 6), 1);
    EXPECT_EQ(back, list);

    unsigned short keep = 7;
    EXPECT_EQ(vesk_wan_port_ranger_string_to_list(nullptr, &keep, 1), 0);
    EXPECT_EQ(vesk_wan_port_ranger_string_to_list("1", nullptr, 1), 0);
    EXPECT_EQ(vesk_wan_port_ranger_string_to_list("1", &keep, 0), 1);
    EXPECT_EQ(keep, 7);
}

} // namespace
