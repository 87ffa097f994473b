#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_ip.h"

namespace {

TEST(Ip, TextToNumber)
{
    const char *invalid = "Error! [vesk_str_2_ipaddr] Invalid IP address!\n";
    const char *null = "Error! [vesk_str_2_ipaddr] ipaddr_str is null\n";
    const struct { const char *text; unsigned int value; const char *message = ""; } cases[] = {
        {"192.168.1.1/24", 0xC0A80101}, {"010.0.0.1", 0x0A000001}, // always decimal
        // Out-of-range fields carry into (or borrow from) the next one.
        {"1.2.3.256", 0x01020400}, {"0.0.0.-1", 0xFFFFFFFF},
        {"192.168.1", 0, invalid}, {"", 0, null}, {nullptr, 0, null},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text ? c.text : "(null)");
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_str_2_ipaddr(c.text), c.value); }), c.message);
    }
}

TEST(Ip, NumberToText)
{
    const struct { unsigned int value; const char *text; } cases[] = {{0xC0A80101, "192.168.1.1"}, {0xFFFFFFFF, "255.255.255.255"}};
    for (const auto &c : cases) {
        char dst[16] = "xxxxxxxxxxxxxxx";
        EXPECT_EQ(vesk_ipaddr_2_str(c.value, dst), 1);
        EXPECT_STREQ(dst, c.text);
        EXPECT_STREQ(vesk_get_ipaddr_str(c.value), c.text);
    }
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_ipaddr_2_str(1, nullptr), 0); }), "Error! [vesk_ipaddr_2_str] dst is null\n");
}

TEST(Ip, SameSubnet)
{
    EXPECT_EQ(vesk_check_same_subnet(0xC0A80101, 0xC0A801FE, 0xFFFFFF00), 1);
    EXPECT_EQ(vesk_check_same_subnet(0xC0A80101, 0xC0A80201, 0xFFFFFF00), 0);
    EXPECT_EQ(vesk_check_same_subnet_str("192.0.2.7", "198.51.100.7", 0xFFFFFF00), 0);
    // Text that does not parse counts as 0.0.0.0, with the parser's message.
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_check_same_subnet_str("garbage", "0.1.2.3", 0xFF000000), 1); }),
              "Error! [vesk_str_2_ipaddr] Invalid IP address!\n");
}

TEST(Ip, FirstAddressOfHost)
{
    vdev::put("/etc/hosts", "127.0.0.1 localhost\n203.0.113.5 printer.lan\n203.0.113.6 printer.lan\n2001:db8::5 six.lan\n");
    const struct { const char *node, *addr; } cases[] = { // addr null: does not resolve
        {"printer.lan", "203.0.113.5"}, {"six.lan", nullptr}, {nullptr, nullptr}, // IPv6 only, none
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.node ? c.node : "(null)");
        char *filled = vesk_ip_get_1st_addr_info("203.0.113.77");
        ASSERT_STREQ(filled, "203.0.113.77");
        EXPECT_EQ(vesk_ip_get_1st_addr_info(c.node), c.addr ? filled : nullptr);
        EXPECT_STREQ(filled, c.addr ? c.addr : ""); // the earlier answer does not survive a failure
    }
}

} // namespace
