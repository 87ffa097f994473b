// Words from outside never reach the shell as syntax. Every function that
// builds a command line from a caller's argument, a file, a header field or
// a tool's output gets each hostile word; the marker file must never appear,
// sentinels beside the paths must survive globs, and a plain word gives
// exactly the device's command line.
#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

#include "fake_sleep.hpp"
#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_br.h"
#include "vesk_crypt.h"
#include "vesk_disk.h"
#include "vesk_file.h"
#include "vesk_fw.h"
#include "vesk_if.h"
#include "vesk_logfile.h"
#include "vesk_wan.h"

namespace {

using lines = std::vector<std::string>;
constexpr char kMarker[] = "/tmp/owned";
constexpr const char *kSentinels[] = {"/tmp/keep", "/mnt/keep", "/var/log/keep", "/mnt/usb1/keep"};

std::vector<std::string> hostile_words()
{
    std::string long_path;
    while (long_path.size() < 3900)
        long_path += std::string(200, 'a') + "/";
    // One word of each kind: separator, substitutions, quotes, blank, tab, newline, option, glob, long line.
    return {";touch /tmp/owned",   "$(touch /tmp/owned)",   "`touch /tmp/owned`", "'$(touch /tmp/owned)'",
            "\"`touch /tmp/owned`\"", "a b;touch /tmp/owned",  "a\ttouch /tmp/owned", "x\ntouch /tmp/owned",
            "-rf",                 "*",                     long_path + ";touch /tmp/owned"};
}

// One use of a word per function that builds a command from outside text;
// "/tmp/WORD" holds two lines first where the site reads a file of that name.
using W = const std::string &;
std::string in(const char *dir, W w) { return dir + w; }
const struct site {
    const char *name;
    bool file;
    std::function<void(W)> call;
} kSites[] = {
    {"disk mount", false, [](W w) { vesk_disk_mount(w.c_str(), in("/mnt/", w).c_str()); }},
    {"disk unmount", false, [](W w) { vesk_disk_unmount(in("/mnt/", w).c_str()); }},
    {"disk copy", true,
     [](W w) { vesk_disk_save_copy_file(in("/tmp/", w).c_str(), in("/mnt/usb1/", w).c_str(), "/mnt/usb1", 0); }},
    {"disk copy, device from /proc/mounts", false, [](W w) {
         vdev::put("/proc/mounts", "rootfs / rootfs rw 0 0\n" + w + " /mnt/usb1 vfat rw 0 0\n");
         vesk_disk_save_copy_file("/tmp/cfg", "/mnt/usb1/cfg", "/mnt/usb1", 0);
         vdev::remove("/proc/mounts");
     }},
    {"text truncate", true,
     [](W w) { vesk_file_text_truncate(in("/tmp/", w).c_str(), in("/tmp/bak", w).c_str(), 1, 0); }},
    {"log file name", false,
     [](W w) { vesk_logfile_get_filename(in("/var/log/", w).c_str(), w.c_str(), w.c_str(), w.c_str()); }},
    {"encrypt", true, [](W w) { vesk_crypt_enc_file(in("/tmp/", w).c_str(), "key", in("/tmp/out", w).c_str(), 0); }},
    {"decode firmware", false, [](W w) { vesk_decode_firmware(in("/tmp/", w).c_str()); }},
    {"restore config", true, [](W w) { vesk_do_restore_config(in("/tmp/", w).c_str(), 0); }},
    {"image upgrade", false, [](W w) { vesk_do_image_upgrade(in("/tmp/", w).c_str(), 0, 0, w.c_str()); }},
    {"kernel header version", false, [](W w) {
         vesk_fw_header h = {};
         h.type = 3, snprintf(h.code_version, sizeof h.code_version, "%s", w.c_str());
         vesk_flash_event_handle("/tmp/kernel.bin", &h, 0);
     }},
    {"ppp check", false, [](W w) { vesk_wan_get_ppp_status("pppd", w.c_str()); }},
    {"hostname", false, [](W w) { vesk_net_set_hostname(w.c_str()); }},
};

class Command : public testing::Test {
protected:
    void SetUp() override
    {
        fake_sleep::reset();
        vdev::put("/var/run/pppd.pid", std::to_string(getpid()));
        vdev::put("/tmp/kernel.bin", "kernel");
        vdev::put("/tmp/cfg", "config");
        ASSERT_EQ(vdev::sh("echo '/dev/sdz1 tmpfs size=1m' >> /run/vdev/disks && mkdir -p /mnt/usb1 && "
                           "mount /dev/sdz1 /mnt/usb1"), 0);
        vdev::clear_journal();
    }
};

TEST_F(Command, HostileWordsNeverRunAsCommands)
{
    for (const auto &word : hostile_words()) {
        for (const auto &s : kSites) {
            SCOPED_TRACE(std::string(s.name) + ": " + word.substr(0, 40));
            for (const char *sentinel : kSentinels)
                vdev::put(sentinel, "k");
            if (s.file)
                vdev::put("/tmp/" + word, "1\n2\n");
            s.call(word);
            EXPECT_FALSE(vdev::exists(kMarker));
            vdev::remove(kMarker);
            for (const char *sentinel : kSentinels)
                EXPECT_TRUE(vdev::exists(sentinel)) << sentinel;
        }
    }
}

TEST_F(Command, PlainAndEmptyWordsGiveTheDeviceCommandLines)
{
    const struct { const char *what; std::function<void()> call; lines want; } cases[] = {
        {"hostname", [] { vesk_net_set_hostname("AP-Zone"); }, {"echo AP-Zone > /etc/hostname"}}, // A and Z are plain
        {"empty hostname", [] { vesk_net_set_hostname(""); }, {"echo  > /etc/hostname"}},
        {"empty interface name", [] { vesk_wan_get_ppp_status("pppd", ""); }, {"netstat -rn | grep ''"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::clear_journal();
        c.call();
        EXPECT_EQ(vdev::commands(), c.want);
    }
}

TEST_F(Command, OtherWordsAreQuotedAndWork)
{
    // A blank in a restored file's name once made "rm -rf" delete the store.
    vdev::put("/tmp/upload/my quil.dat", "restored\n");
    ASSERT_EQ(chdir("/storage"), 0);
    vesk_do_restore_config("/tmp/upload/my quil.dat", 0);
    EXPECT_EQ(vdev::read("/storage/quil.dat"), "restored\n");
    EXPECT_FALSE(vdev::exists("/tmp/upload/my quil.dat"));
    EXPECT_EQ(vdev::commands(), (lines{"cp '/tmp/upload/my quil.dat' /storage/quil.dat", "rm -rf '/tmp/upload/my quil.dat'"}));

    // A tilde and a quote go through as they are.
    vdev::put("/tmp/it's~1", "config");
    vdev::clear_journal();
    EXPECT_EQ(vesk_disk_save_copy_file("/tmp/it's~1", "/mnt/usb1/it's~1", "/mnt/usb1", 0), 1);
    EXPECT_EQ(vdev::read("/mnt/usb1/it's~1"), "config");
    EXPECT_EQ(vdev::commands(), (lines{"cat /proc/mounts | grep /dev/sdz1", "cp '/tmp/it'\\''s~1' '/mnt/usb1/it'\\''s~1' 2>&1"}));
}

TEST_F(Command, RefusedWordsRunNothingAndSaySo)
{
    const struct { const char *what; std::function<int()> call; int result; } cases[] = {
        {"option as input", [] { return vesk_crypt_enc_file("-rf", "k", "/tmp/out", 0); }, 0},
        {"newline in version", [] { return vesk_do_image_upgrade("/tmp/kernel.bin", 0, 0, "1\n2"); }, 1},
        {"option as restore path", [] { return vesk_do_restore_config("-/tmp/cfg", 1); }, 1},
    };
    ASSERT_EQ(chdir("/tmp"), 0);
    vdev::put("-rf", "x");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::clear_journal();
        EXPECT_NE(stderr_of([&] { EXPECT_EQ(c.call(), c.result); }).find("argument"), std::string::npos);
        EXPECT_EQ(vdev::commands(), lines{});
    }
    // Nothing of a refused restore happened: no reboot, the store is whole.
    EXPECT_TRUE(vdev::exists("/tmp/cfg"));
}

TEST(CommandLine, LongLinesAreRefusedNotCut)
{
    // "echo NAME > /etc/hostname" is the name and 21 bytes.
    const std::string fits(8192 - 21, 'a'), over(8192 - 20, 'a');
    vdev::clear_journal();
    EXPECT_EQ(vesk_net_set_hostname(fits.c_str()), 0);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_net_set_hostname(over.c_str()), -1); }),
              "vesk_net_set_hostname: command line of 8193 bytes too long, not run\n");
    const lines run = vdev::commands();
    ASSERT_EQ(run.size(), 1u);
    EXPECT_TRUE(run[0] == "echo " + fits + " > /etc/hostname");
}

// The bridge tool's output names devices: a device whose name is shell
// syntax is deleted from the table, and nothing runs.
TEST(CommandLine, DeviceNamesFromTheBridgeTool)
{
    ASSERT_EQ(vdev::sh("ip link add 'a;touch$IFS.z' type veth peer name zpeer && ip link set 'a;touch$IFS.z' master br0 &&"
                       " bridge fdb add 02:aa:bb:cc:dd:05 dev 'a;touch$IFS.z' master static"), 0);
    vdev::clear_journal();
    ASSERT_EQ(chdir("/tmp"), 0);
    EXPECT_EQ(vesk_del_br_fdb("02:aa:bb:cc:dd:05"), 1);
    EXPECT_FALSE(vdev::exists("/tmp/.z"));
    EXPECT_EQ(vdev::commands().back(), "bridge fdb del 02:aa:bb:cc:dd:05 dev 'a;touch$IFS.z'\n");
    // A trailing newline is no part of a MAC address.
    vdev::clear_journal();
    EXPECT_EQ(vesk_del_br_fdb("02:aa:bb:cc:dd:05\n"), 0);
    EXPECT_EQ(vdev::commands(), lines{});
}

} // namespace
