// Escaping user text, and random numbers from the device's /dev/urandom.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <string>

#include "fake_clock.hpp"
#include "net_helpers.hpp"
#include "vesk_util.h"

namespace {

TEST(CheckString, Escapes)
{
    const struct { const char *text, *web, *shell; } cases[] = {
        {"a\"b\\c", "a\\\"b\\\\c", "a\\\"b\\\\c"},
        {"$HOME & `id` | (x) *;<>~#'", "$HOME & `id` | (x) *;<>~#'",
         "\\$HOME\\ \\&\\ \\`id\\`\\ \\|\\ \\(x\\)\\ \\*\\;\\<\\>\\~\\#\\'"},
        {"100%?![a]{b}^\t\n", "100%?![a]{b}^\t\n", "100%?![a]{b}^\t\n"},
        {"\xA2\xBC\xDC", "\xA2\xBC\xDC", "\xA2\xBC\xDC"}, // high bytes are not their low-ASCII twins
        {"", "", ""}, {nullptr, "", ""},
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
    vesk_util_check_string_on_web("x", nullptr); // no destination: nothing happens
}

// /dev/urandom of the device as a plain file of the test's making, or none.
void replace_urandom(const std::string *content)
{
    vdev::sh("umount /dev/urandom 2>/dev/null");
    vdev::remove("/dev/urandom");
    if (content)
        vdev::put("/dev/urandom", *content);
}

TEST(RandomNum, SeedsFromTheKernelPool)
{
    // The real pool: two draws differ (a chance of one in 2^31 of a fault).
    EXPECT_NE(vesk_util_generate_random_num(), vesk_util_generate_random_num());
    const std::string four("\x78\x56\x34\x12rest", 8), two("\x01\x02", 2), none;
    // Four bytes make the seed; a short read or an empty pool seeds with 0.
    for (auto [pool, seed] : {std::pair{&four, 0x12345678u}, {&two, 0u}, {&none, 0u}}) {
        replace_urandom(pool);
        srand(seed);
        int want = rand();
        EXPECT_EQ(vesk_util_generate_random_num(), want) << pool->size();
    }
    replace_urandom(nullptr);
    EXPECT_EQ(vesk_util_generate_random_num(), 0);
}

TEST(RandomSeed, StirsMacAndTimeIntoThePool)
{
    ASSERT_EQ(vdev::sh("ip link add eth7 type veth peer name eth7p && ip link set eth7 address 00:11:22:33:44:55 && "
                       "ip link set eth7p address 00:00:ff:ff:ff:ff"), 0);
    fake_clock::scoped clock(1432787445);
    // Bytes of 0xFF count as -1.
    for (auto [ifname, mac] : {std::pair<const char *, unsigned>{"eth7", 0x22334455}, {"eth7p", 0xFEFEFEFF},
                               {nullptr, 0}, {"nosuch0", 0}}) {
        SCOPED_TRACE(ifname ? ifname : "(null)");
        const std::string empty;
        replace_urandom(&empty); // catch the echo in a file
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_util_generate_random_seed(ifname), 0); }),
                  "Mac: " + std::to_string(mac) + ", rtcTime:1432787445\n");
        EXPECT_EQ(vdev::read("/dev/urandom"), std::to_string(mac + 1432787445u) + "\n");
    }
    // The result is CMD's: a pool that cannot be written fails the echo.
    replace_urandom(nullptr);
    ASSERT_EQ(vdev::sh("mkdir /dev/urandom"), 0);
    stderr_of([] { EXPECT_NE(vesk_util_generate_random_seed(nullptr), 0); });
}

} // namespace
