// Escaping user text, and random numbers from the device's /dev/urandom.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <string>

#include "vdev.hpp"
#include "vesk_util.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(CheckString, Escapes)
{
    const struct {
        const char *text;
        const char *web;
        const char *shell;
    } cases[] = {
        {"a\"b\\c", "a\\\"b\\\\c", "a\\\"b\\\\c"},
        {"a b;c", "a b;c", "a\\ b\\;c"},
        {"$HOME & `id` | (x) *;<>~#'", "$HOME & `id` | (x) *;<>~#'",
         "\\$HOME\\ \\&\\ \\`id\\`\\ \\|\\ \\(x\\)\\ \\*\\;\\<\\>\\~\\#\\'"},
        {"100%?!", "100%?!", "100%?!"},
        {"[a]{b}^\t\n", "[a]{b}^\t\n", "[a]{b}^\t\n"},
        {"\\\\", "\\\\\\\\", "\\\\\\\\"},
        {"\xA2\xBC\xDC", "\xA2\xBC\xDC", "\xA2\xBC\xDC"}, // high bytes are not their low-ASCII twins
        {"", "", ""},
        {nullptr, "", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text ? c.text : "(null)");
        // Exactly the room promised to the caller: twice the text and a byte.
        size_t room = 2 * (c.text ? strlen(c.text) : 0) + 1;
        std::string web(room + 4, 'x'), shell(room + 4, 'x'), plain(room + 4, 'x');
        vesk_util_check_string_on_web(c.text, web.data());
        vesk_util_check_string_on_shell_cmd(c.text, shell.data());
        vesk_util_check_string(c.text, plain.data(), 7);
        EXPECT_STREQ(web.c_str(), c.web);
        EXPECT_STREQ(shell.c_str(), c.shell);
        EXPECT_STREQ(plain.c_str(), c.shell); // any non-zero for_shell
        EXPECT_EQ(shell.substr(room), "xxxx");
    }
    // Every one of the sixteen at once fills the whole room.
    const char all[] = "\"#$&'()*;<>\\`|~ ";
    char out[2 * sizeof all - 1];
    vesk_util_check_string_on_shell_cmd(all, out);
    EXPECT_EQ(strlen(out), 32u);
    vesk_util_check_string_on_web("x", nullptr); // no destination: nothing happens
}

// /dev/urandom of the device as a plain file of the test's making.
void replace_urandom(const std::string *content)
{
    vdev::sh("umount /dev/urandom 2>/dev/null");
    vdev::remove("/dev/urandom");
    if (content)
        vdev::put("/dev/urandom", *content);
}

int rand_after(unsigned int seed)
{
    srand(seed);
    return rand();
}

TEST(RandomNum, SeedsFromTheKernelPool)
{
    // The real pool: two draws differ (a chance of one in 2^31 of a fault).
    int first = vesk_util_generate_random_num();
    EXPECT_NE(first, vesk_util_generate_random_num());

    const std::string four("\x78\x56\x34\x12rest", 8), two("\x01\x02", 2), none;
    const struct {
        const char *name;
        const std::string *pool; // null: no /dev/urandom
        int result;
    } cases[] = {
        {"four bytes make the seed", &four, rand_after(0x12345678)},
        {"short read seeds with 0", &two, rand_after(0)},
        {"empty pool seeds with 0", &none, rand_after(0)},
        {"no pool", nullptr, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        replace_urandom(c.pool);
        EXPECT_EQ(vesk_util_generate_random_num(), c.result);
    }
}

TEST(RandomSeed, StirsMacAndTimeIntoThePool)
{
    ASSERT_EQ(vdev::sh("ip link add eth7 type veth peer name eth7p && ip link set eth7 address 00:11:22:33:44:55 && "
                       "ip link set eth7p address 00:00:ff:ff:ff:ff"),
              0);
    const struct {
        const char *ifname;
        unsigned int mac_value;
    } cases[] = {
        {"eth7", 0x22334455},
        {"eth7p", 0xFEFEFEFF}, // bytes of 0xFF count as -1
        {nullptr, 0},
        {"nosuch0", 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifname ? c.ifname : "(null)");
        const std::string empty;
        replace_urandom(&empty); // catch the echo in a file
        unsigned int before = static_cast<unsigned int>(time(nullptr));
        CaptureStderr();
        EXPECT_EQ(vesk_util_generate_random_seed(c.ifname), 0);
        std::string printed = GetCapturedStderr();
        unsigned int after = static_cast<unsigned int>(time(nullptr));

        unsigned int mac = 1, now = 0;
        ASSERT_EQ(sscanf(printed.c_str(), "Mac: %u, rtcTime:%u\n", &mac, &now), 2) << printed;
        EXPECT_EQ(printed, "Mac: " + std::to_string(c.mac_value) + ", rtcTime:" + std::to_string(now) + "\n");
        EXPECT_EQ(mac, c.mac_value);
        EXPECT_GE(now, before);
        EXPECT_LE(now, after);
        EXPECT_EQ(vdev::read("/dev/urandom"), std::to_string(c.mac_value + now) + "\n");
    }
    // The result is CMD's: a pool that cannot be written fails the echo.
    replace_urandom(nullptr);
    ASSERT_EQ(vdev::sh("mkdir /dev/urandom"), 0);
    CaptureStderr();
    EXPECT_NE(vesk_util_generate_random_seed(nullptr), 0);
    GetCapturedStderr();
}

} // namespace
