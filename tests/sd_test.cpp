#include <gtest/gtest.h>

#include <time.h>
#include <unistd.h>

#include <string>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_sd.h"

namespace {

// The stand-in daemon answers each request with the lines of this file.
void daemon_says(const std::string &lines) { vdev::put("/run/vdev/sd/replies", lines); }

std::string client_file() { return "/var/sd_local_" + std::to_string(getpid()) + "-168"; }

void start_daemon() { ASSERT_EQ(vdev::sh("/run/vdev/emu/peers/system_daemon start"), 0); }

TEST(SdCtrl, RepliesReportsAndFireAndForget)
{
    EXPECT_EQ(vesk_sd_ctrl("status", nullptr), -3);
    start_daemon();
    const std::string interim127 = "<" + std::string(126, 'i');
    const struct { const char *name, *command; std::string says, reply, printed, wire; } cases[] = {
        {"final reply", "status", "done\n", "done", "", "status"},
        {"interim reports, then an empty final one", "scan", "<10%\n<50%\n\n", "", "[<10%] [4]\n[<50%] [4]\n", "scan"},
        {"127-byte report shows 126", "x", interim127 + "\nend\n", "end", "[" + interim127.substr(0, 126) + "] [126]\n", "x"},
        {"a longer one is cut", "x", std::string(200, 'g') + "\n", std::string(127, 'g'), "", "x"},
        {"& is not sent, nothing waited for", "reload&", "", "OK", "", "reload"},
    };
    std::string wire;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        daemon_says(c.says);
        char reply[128];
        memset(reply, 'Z', sizeof reply);
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_sd_ctrl(c.command, reply), 0); }), c.printed);
        EXPECT_EQ(std::string(reply), c.reply);
        EXPECT_FALSE(vdev::exists(client_file()));
        EXPECT_EQ(vesk_sd_ctrl(c.command, nullptr), 0);
        wire += c.wire + "\n" + c.wire + "\n";
    }
    EXPECT_EQ(vesk_sd_ctrl("", nullptr), -1);
    // Answered in order, so once the tool's request is, every datagram before
    // it is logged (escaped: a zero behind a text would show). Its client is
    // another address, which late answers to the library's cannot reach.
    vdev::remove("/run/vdev/sd/replies");
    ASSERT_EQ(vdev::sh("sd_ctrl sync >/dev/null"), 0);
    EXPECT_EQ(vdev::read("/run/vdev/sd/requests"), wire + "sync\n");
}

// The one case that waits through the daemon's whole silence.
TEST(SdCtrl, SilentDaemonTimesOutAfterFortySeconds)
{
    start_daemon();
    daemon_says("");
    const time_t start = time(nullptr);
    char reply[128] = "untouched";
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_sd_ctrl("status", reply), -2); }), "'status' command timed out.\n");
    EXPECT_GE(time(nullptr) - start, 39);
    EXPECT_STREQ(reply, "untouched");
    EXPECT_FALSE(vdev::exists(client_file()));
}

} // namespace
