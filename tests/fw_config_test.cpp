#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <algorithm>

#include "output_of.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_fw.h"

namespace {

using lines = std::vector<std::string>;

void set_number(const char *key, int v) { ASSERT_EQ(quil_set_value(&v, key), 0) << key; }

// A store with keys of several prefixes.
void fill_store()
{
    for (auto [key, v] : {std::pair{"schedule_en", 1}, {"radio_opmode_1", 2}, {"radio_opmode_2", 3}, {"scheduleS_en", 4}})
        set_number(key, v);
}

TEST(FwRestore, PrefixListTokensGoToTheStoreBeforeTheFileIsReplaced)
{
    // list nullptr: no list; new_dat: quil_new.dat afterwards.
    const struct { const char *name, *list, *printed, *new_dat; } cases[] = {
        {"no list", nullptr, "", "old=1\n"},
        {"empty list", "", "", ""},
        {"two lines", "radio\r\nscheduleS\n", "buf [radio]\nbuf [scheduleS]\n",
         "radio_opmode_1=2\nradio_opmode_2=3\nscheduleS_en=4\n"},
        {"long line comes in pieces", "radio_opmode_1xxxxxxxxxxxxxxxxxxxxxxxxxx\n",
         "buf [radio_opmode_1xxxxxxxxxxxxxxx]\nbuf [xxxxxxxxxxx]\n", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put(QUIL_DAT_FILE, "");
        fill_store();
        vdev::put(QUIL_NEW_DAT_FILE, "old=1\n");
        vdev::remove("/storage/prefix_list");
        if (c.list)
            vdev::put("/storage/prefix_list", c.list);
        vdev::put("/tmp/restore.dat", "schedule_en=0\n");
        EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_do_restore_config("/tmp/restore.dat", 0), 1); }), c.printed);
        EXPECT_EQ(vdev::read(QUIL_NEW_DAT_FILE), c.new_dat);
        EXPECT_FALSE(vdev::exists("/storage/prefix_list"));
    }
}

TEST(FwRestore, RebootOnlyWhenAskedAndUsbCopiesOnlyWithUsboot)
{
    // The device is told last; without reboot the commands end at the rm (Command.OtherWordsAreQuotedAndWork).
    vdev::put("/tmp/restore.dat", "x");
    vdev::clear_journal();
    EXPECT_EQ(vesk_do_restore_config("/tmp/restore.dat", 1), 1);
    EXPECT_EQ(vdev::commands(), (lines{"cp /tmp/restore.dat /storage/quil.dat", "rm -rf /tmp/restore.dat",
                                       "sd_ctrl inform reboot"}));
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_do_restore_config(nullptr, 1), 1); }),
              "vesk_do_restore_config: path is NULL!\n");

    // Booted from USB, a read-only disk does not stop the restore; each of the two copies is reported.
    ASSERT_EQ(mkdir("/mnt/usboot", 0755) + mkdir("/mnt/usb1", 0755), 0);
    ASSERT_EQ(mount("usb1", "/mnt/usb1", "tmpfs", MS_RDONLY, "size=1m"), 0);
    vdev::put("/tmp/restore.dat", "schedule_en=7\n");
    EXPECT_EQ(vesk_do_restore_config("/tmp/restore.dat", 0), 1);
    EXPECT_EQ(quil_get_int_value("schedule_en"), 7);
    lines journal = vdev::commands();
    EXPECT_EQ(std::count(journal.begin(), journal.end(), "led_ctl diag D5"), 2) << testing::PrintToString(journal);
}

TEST(FwBackup, RefusedKeyLeavesNoImageAndStoreIsFlushedFirst)
{
    const std::string key65(65, 'k');
    vdev::clear_journal();
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_do_backup_config(key65.c_str()), 1); }),
              "vesk_crypt_enc_file: input key error!\n");
    EXPECT_EQ(vdev::commands(), lines{"header -s /tmp/ap_cfg -d /tmp/user.conf -a -t userconfig -c 1.0.0"});
    EXPECT_FALSE(vdev::exists("/tmp/user.conf"));
    EXPECT_EQ(std::count(reset_default_prefix_list, std::end(reset_default_prefix_list), '\0'), 480); // untouched
    vdev::remove(QUIL_DAT_FILE); // a store without its file yet is flushed first
    EXPECT_EQ(vesk_do_backup_config("k"), 1);
    EXPECT_TRUE(vdev::exists("/tmp/user.conf"));
    // The store's file is encrypted and kept; the plain copy goes after the header tool.
    EXPECT_TRUE(vdev::exists(QUIL_DAT_FILE));
    EXPECT_FALSE(vdev::exists("/tmp/ap_cfg"));
}

} // namespace
