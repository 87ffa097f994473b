#include <gtest/gtest.h>

#include <string.h>

#include <string>
#include <vector>

#include "net_helpers.hpp"
#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_mii.h"

namespace {

using lines = std::vector<std::string>;

// PHY 1's registers in the device model, "REG VALUE" (hex) a line.
void phy1(const std::string &regs) { vdev::put("/run/vdev/mii/1/regs", regs); }

TEST(MiiStatus, CommonAbilitiesAndPartnerBits)
{
    const struct { const char *name, *regs; unsigned int code, speed_class, abilities, full; } cases[] = {
        {"1000 full wins over 100", "4 01e1\n5 01e1\n9 0200\n10 0800\n", 0x04, 4, 0x1B, 0},
        {"own 1000 full, partner 1000 half: 10/100 decide", "4 01e1\n5 00a0\n9 0200\n10 0400\n", 0x10, 2, 0x18, 0},
        {"1000 half on both", "4 0\n5 0\n9 0100\n10 0400\n", 0x20, 4, 0, 7},
        {"100 half goes before 10 full", "4 00c0\n5 00c0\n9 0\n10 0\n", 0x10, 2, 0x11, 0},
        {"nothing in common", "4 0020\n5 0040\n9 0\n10 0\n", 0, 0, 0x01, 1},
        {"pause bits", "4 0\n5 0c00\n9 0\n10 0\n", 0, 0, 0x24, 1},
    };
    const unsigned char port = 2; // any non-zero byte: PHY 1
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        phy1(c.regs);
        unsigned int code = 99, speed_class = 99, abilities = 99, full = 7;
        EXPECT_EQ(vesk_mii_get_link_partner_speed_ex("eth2", &code, 1) + vesk_mii_get_link_partner_speed(&port, &speed_class) +
                      vesk_mii_get_link_partner_info("eth2", &abilities, &full, 1), 3);
        EXPECT_EQ(std::make_tuple(code, speed_class, abilities, full), std::make_tuple(c.code, c.speed_class, c.abilities, c.full));
    }
}

TEST(MiiStatus, LinkByEitherRequestAndFailures)
{
    const unsigned char port = 1;
    int link = 7;
    for (const auto &[regs, up] : {std::pair{"1 796d\n", 1}, {"1 7969\n", 0}}) {
        phy1(regs);
        vdev::clear_journal();
        EXPECT_EQ(vesk_mii_check_link(&port, &link, 1), 1);
        EXPECT_EQ(link, up);
        EXPECT_EQ(vdev::ioctls(), lines({"eth2 miiphy phy=1 reg=1", "eth2 miireg phy=1 reg=1"}));
    }
    vdev::fail_ioctl("eth2", "miiphy", "ENODEV"); // a driver without it still reads
    vdev::clear_journal();
    EXPECT_EQ(vesk_mii_check_link_ex("eth2", &link, 0, 0), 1);
    EXPECT_EQ(vdev::ioctls(), lines({"eth2 miiphy phy=0 reg=1", "eth2 mdio phy=0 reg=0"}));

    vdev::remove("/run/vdev/fail/ioctl");
    vdev::fail_ioctl("eth2", "miiphy", "EPERM");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mii_check_link_ex("eth2", &link, 1, 1), 0); }),
              std::string("vesk_mii_check_link_ex: SIOCGMIIPHY on 'eth2' failed: ") + strerror(EPERM) + "\n");
    EXPECT_EQ(link, 0);
    // No descriptor for the socket: no answer.
    const vdev::outcome o = without_descriptors([&] { return vesk_mii_check_link_ex("eth2", &link, 1, 1) == 0; });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "vesk_mii_check_link_ex: socket error!\n");
    vdev::remove("/run/vdev/fail/ioctl");
    vdev::fail_ioctl("eth2", "mdio", "EIO"); // a failed read is no answer, not 0xFFFF
    unsigned int code = 99;
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_mii_get_link_partner_speed_ex("eth2", &code, 1), 0); }),
              std::string("mdio_read(): SIOCGMIIREG on eth2 failed: ") + strerror(EIO) + "\n");
    EXPECT_EQ(code, 0u);
}

TEST(MiiControl, ToolCommandLines)
{
    const std::string get = "mii_mgr -g -p 1 -r ", set = "/sbin/mii_mgr -s -p 1 -r ", mmd = "mii_mgr -s -p 1 -r 1";
    const struct { const char *name; int (*call)(); const char *regs; lines commands; } cases[] = {
        {"power down", [] { return vesk_mii_set_power(1, 0); }, "0 1140\n", {get + "0 ", set + "0 -v 1940"}},
        {"pause on", [] { return vesk_mii_set_flow_control(1, 1); }, "4 01e1\n", {get + "4 ", set + "4 -v de1"}},
        {"1000 full only", [] { return vesk_mii_set_port_link_speed(5, 1); }, "0 1140\n4 0de1\n9 0\n",
         {get + "0 ", get + "4 ", get + "9 ", set + "4 -v c01", set + "9 -v 200", set + "0 -v 1340"}},
        {"wrong speed writes nothing", [] { return vesk_mii_set_port_link_speed(6, 1); }, "", {get + "0 ", get + "4 ", get + "9 "}},
        {"gmac 10 full on port 2", [] { return vesk_mii_set_gmac_link_speed(2, 2); }, "", {"reg s b0100000", "reg p 0x18", "reg w 0x18 0x9000"}},
        {"gmac automatic on port 3", [] { return vesk_mii_set_gmac_link_speed(0, 3); }, "", {"reg s b0100000", "reg p 0x4", "reg w 0x4 0x20000000"}},
        {"wrong mdi mode clears both bits", [] { return vesk_mii_set_port_mdi_mode(3, 1); }, "",
         {mmd + "3 -v 1e", mmd + "4 -v 145", mmd + "3 -v 401e", "mii_mgr -g -p 1 -r 14", mmd + "4 -v 0"}},
        {"EEE mode 2 is off", [] { return vesk_mii_set_802_3_az_mode(2, 1); }, "",
         {mmd + "3 -v 0x7", mmd + "4 -v 0x3c", mmd + "3 -v 0x4007", mmd + "4 -v 0", mmd + "3 -v 0x3", mmd + "4 -v 0x805d",
          mmd + "3 -v 0x4003", mmd + "4 -v 0"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        phy1(c.regs);
        vdev::clear_journal();
        stderr_of([&] { EXPECT_EQ(c.call(), 0); });
        EXPECT_EQ(vdev::commands(), c.commands);
    }
    vdev::put("/run/vdev/fail/mii_mgr", "");
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_mii_set_power(1, 1), -1); }), "Error in vesk_mii_set_power\n");
}

TEST(MiiControl, AdvertisedSpeedShowsInTheStatus)
{
    phy1("0 1140\n1 796d\n4 01e1\n5 01e1\n9 0200\n10 0c00\n");
    unsigned int code = 0;
    for (const auto &[mode, want] : {std::pair{4u, 0x02u}, {3u, 0x10u}, {0u, 0x04u}}) {
        EXPECT_EQ(vesk_mii_set_port_link_speed(mode, 1), 0);
        EXPECT_EQ(vesk_mii_get_link_partner_speed_ex("eth2", &code, 1), 1);
        EXPECT_EQ(code, want) << mode;
    }
}

} // namespace
