#include <gtest/gtest.h>

#include <cstring>

#include "fake_sleep.hpp"
#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_fw.h"

namespace {

using lines = std::vector<std::string>;

vesk_fw_header header_of(uint32_t type, const char *version = "1.2.3")
{
    vesk_fw_header h = {};
    h.type = type;
    strcpy(h.code_version, version);
    return h;
}

TEST(FwUpgrade, KernelGoesToItsPartitionAndConfigurationToTheStore)
{
    vdev::put("/tmp/kernel.bin", "kernel image");
    vesk_fw_header h = header_of(3, "2.0.1");
    EXPECT_EQ(vesk_flash_event_handle("/tmp/kernel.bin", &h, 1), 1);
    EXPECT_EQ(vdev::commands(), (lines{"flashcp -v /tmp/kernel.bin /dev/mtd3", "board_config set kver 2.0.1",
                                       "sd_ctrl inform reboot"}));
    EXPECT_EQ(fake_sleep::calls, 2u);
    EXPECT_EQ(fake_sleep::slept_us, 3000000ull);
    // A configuration image replaces the store's file.
    vdev::put("/tmp/cfg.bin", "schedule_en=1\n");
    vdev::clear_journal();
    h = header_of(7);
    EXPECT_EQ(vesk_flash_event_handle("/tmp/cfg.bin", &h, 1), 1);
    EXPECT_EQ(vdev::commands(), (lines{"cp /tmp/cfg.bin /storage/quil.dat", "rm -rf /tmp/cfg.bin", "sd_ctrl inform reboot"}));
}

TEST(FwUpgrade, OtherTypesDoNothingAndUnknownTypesFail)
{
    const std::string wrong = "Err: vesk_flash_event_handle wrong type: ";
    const struct { uint32_t type; int result; std::string message; } cases[] = {
        {1, 1, ""}, {11, 1, ""}, {13, 1, ""}, {0x80000000u, 0, wrong + "-2147483648\n"},
    };
    vdev::put("/tmp/img", "image");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.type);
        vesk_fw_header h = header_of(c.type);
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_flash_event_handle("/tmp/img", &h, 1), c.result); }), c.message);
    }
    vesk_fw_header h = header_of(3);
    EXPECT_EQ(vesk_flash_event_handle(nullptr, &h, 0) + vesk_flash_event_handle("/tmp/img", nullptr, 0), 0);
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_do_image_upgrade(nullptr, 1, 1, "1.0"), 1); }),
              "vesk_do_image_upgrade: path is NULL!\n");
    EXPECT_TRUE(vdev::commands().empty());
    EXPECT_EQ(fake_sleep::calls, 0u);
}

TEST(FwUpgrade, MissingPartitionStillRecordsVersion)
{
    // A failed write goes on to kver; the device tool refuses /dev/mtd-1.
    vdev::put("/proc/mtd", "dev:    size   erasesize  name\nmtd0: 00030000 00010000 \"Bootloader\"\n");
    vdev::put("/tmp/k", "k");
    for (int index : {0, 1, 5, -1}) { // the first type's partition; no Kernel partition, past the table, negative
        SCOPED_TRACE(index);
        vdev::clear_journal();
        stderr_of([&] { EXPECT_EQ(vesk_do_image_upgrade("/tmp/k", index, 0, "9.9.9"), 1); });
        const std::string mtd = index == 0 ? "/dev/mtd0" : "/dev/mtd-1";
        EXPECT_EQ(vdev::commands(), (lines{"flashcp -v /tmp/k " + mtd, "board_config set kver 9.9.9"}));
    }
}

TEST(FwUpgrade, ProgressReadsTheStatusFileOfTheLastComponent)
{
    const struct { const char *content; int result, percent; } cases[] = { // content nullptr: no file
        {"0", 0, 0}, {"abc", -1, 7}, {nullptr, 0, 7}, {" 12 percent", 12, 12},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.content ? c.content : "(no file)");
        vdev::remove("/var/fw.bin.stat");
        if (c.content)
            vdev::put("/var/fw.bin.stat", c.content);
        char name[] = "/tmp/up/fw.bin//";
        int percent = 7;
        EXPECT_EQ(vesk_firmware_get_upgrade_progress(name, &percent), c.result);
        EXPECT_EQ(percent, c.percent);
    }
    int percent = 7;
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_firmware_get_upgrade_progress(nullptr, &percent), -1); }),
              "vesk_firmware_get_upgrade_progress: input error!\n");
    // 125 characters fit the 136-byte path, 126 do not.
    for (size_t len : {125u, 126u}) {
        std::string name(len, 'n');
        vdev::put("/var/" + name.substr(0, 125) + ".stat", "33\n");
        stderr_of([&] { EXPECT_EQ(vesk_firmware_get_upgrade_progress(name.data(), &percent), len == 125 ? 33 : -1); });
    }
}

} // namespace
