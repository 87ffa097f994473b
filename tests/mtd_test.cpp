#include <gtest/gtest.h>

#include <string>

#include "vdev.hpp"
#include "vesk_mtd.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

constexpr const char *kHeader = "dev:    size   erasesize  name\n";

TEST(Mtd, FindsPartitionByLinePosition)
{
    const std::string long_name(200, 'x');
    const struct {
        const char *what;
        std::string table; // after the header
        const char *name;
        int result, size;
    } cases[] = {
        {"second of two", "mtd0: 00030000 00010000 \"Boot\"\nmtd1: 00e90000 00010000 \"Kernel\"\n", "Kernel", 1,
         0xe90000},
        {"position, not token", "mtd7: 00400000 00010000 \"Kernel\"\n", "Kernel", 0, 0x400000},
        {"first word of a spaced name", "mtd0: 00010000 00010000 \"rootfs data\"\n", "rootfs", 0, 0x10000},
        {"no closing quote", "mtd0: 00010000 00010000 \"Kernel\n", "Kernel", 0, 0x10000},
        {"over-long line counts once", "mtd0: 1 1 \"" + long_name + "\"\nmtd1: 00020000 00010000 \"Kernel\"\n",
         "Kernel", 1, 0x20000},
        {"last line without newline", "mtd0: 1 1 \"A\"\nmtd1: 00000800 00010000 \"Kernel\"", "Kernel", 1, 0x800},
        {"31 characters", "mtd0: 00001000 1 \"" + std::string(31, 'n') + "\"\n", nullptr, 0, 0x1000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::put("/proc/mtd", kHeader + c.table);
        int index = 99, size = 99;
        std::string name = c.name ? c.name : std::string(31, 'n');
        EXPECT_EQ(vesk_get_mtd_by_name(name.c_str(), &index, &size), c.result);
        EXPECT_EQ(index, c.result);
        EXPECT_EQ(size, c.size);
    }
}

TEST(Mtd, NoMatchGivesMinusOneAndZeroSize)
{
    const std::string long_name(40, 'k');
    const struct {
        const char *what;
        std::string table;
        std::string name;
    } cases[] = {
        {"unknown", "mtd0: 00010000 00010000 \"Kernel\"\n", "Rootfs"},
        {"prefix only", "mtd0: 00010000 00010000 \"Kernel\"\n", "Kern"},
        {"longer query", "mtd0: 00010000 00010000 \"Kernel\"\n", "Kernel2"},
        {"case differs", "mtd0: 00010000 00010000 \"Kernel\"\n", "kernel"},
        {"spaced name whole", "mtd0: 00010000 00010000 \"rootfs data\"\n", "rootfs data"},
        {"unquoted name", "mtd0: 00010000 00010000 Kernel\n", "Kernel"},
        {"name past the field's width", "mtd0: 1 1 \"" + long_name + "\"\n", long_name},
        {"its first 31 characters", "mtd0: 1 1 \"" + long_name + "\"\n", long_name.substr(0, 31)},
        {"empty name", "mtd0: 00010000 00010000 \"Kernel\"\n", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::put("/proc/mtd", kHeader + c.table);
        int index = 99, size = 99;
        EXPECT_EQ(vesk_get_mtd_by_name(c.name.c_str(), &index, &size), -1);
        EXPECT_EQ(index, -1);
        EXPECT_EQ(size, 0);
    }
    // The header line is never a partition.
    vdev::put("/proc/mtd", "mtd0: 00010000 00010000 \"Kernel\"\n");
    int index = 99, size = 99;
    EXPECT_EQ(vesk_get_mtd_by_name("Kernel", &index, &size), -1);
}

TEST(Mtd, ArgumentsAndMissingTable)
{
    int index = 5, size = 7;
    CaptureStderr();
    EXPECT_EQ(vesk_get_mtd_by_name(nullptr, &index, &size), -1);
    EXPECT_EQ(GetCapturedStderr(), "vesk_get_mtd_by_name: inMtdName = NULL!\n");
    EXPECT_EQ(index, 5);
    EXPECT_EQ(size, 7);

    // The default device's table; null destinations are not written.
    EXPECT_EQ(vesk_get_mtd_by_name("Kernel", nullptr, nullptr), 3);
    EXPECT_EQ(vesk_get_mtd_by_name("Nothing", nullptr, nullptr), -1);

    vdev::remove("/proc/mtd");
    EXPECT_EQ(vesk_get_mtd_by_name("Kernel", &index, &size), -1);
    EXPECT_EQ(index, -1);
    EXPECT_EQ(size, 7);
}

// The board's MAC, or a failing board tool for nullptr; the journal starts empty.
void set_board_mac(const char *ethaddr)
{
    if (ethaddr) {
        vdev::remove("/run/vdev/fail/board_config");
        vdev::set_board("ethaddr", ethaddr);
    } else {
        vdev::put("/run/vdev/fail/board_config", "");
    }
    vdev::clear_journal();
}

TEST(Uuid, TemplateEndsInTheBoardMac)
{
    const struct {
        const char *ethaddr; // nullptr: the board tool fails
        const char *uuid;
    } cases[] = {
        {"00:11:22:33:44:55", "f0015eb6-69b9-436e-a383-001122334455"},
        {"AA:BB:CC:DD:EE:FF", "f0015eb6-69b9-436e-a383-aabbccddeeff"},
        {"aabbccddee01", "f0015eb6-69b9-436e-a383-aabbccddee01"},
        {nullptr, "f0015eb6-69b9-436e-a383-00aabbccdd10"},
        {"not a mac", "f0015eb6-69b9-436e-a383-000000000000"}, // the tool ran: no fallback
        {"", "f0015eb6-69b9-436e-a383-000000000000"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ethaddr ? c.ethaddr : "(tool fails)");
        set_board_mac(c.ethaddr);
        char *uuid = vesk_get_uuid();
        EXPECT_STREQ(uuid, c.uuid);
        EXPECT_EQ(vesk_get_uuid(), uuid);
        EXPECT_EQ(vdev::journal(),
                  (std::vector<std::string>{"board_config get ethaddr", "board_config get ethaddr"}));
    }
}

TEST(Uuid, ToolMakesItFromTheMacOrItsSuccessor)
{
    const struct {
        const char *ethaddr; // nullptr: the board tool fails
        int which;
        const char *asked;
    } cases[] = {
        {"00:11:22:33:44:55", 0, "uuidgen -m 001122334455"},
        {"00:11:22:33:44:55", 1, "uuidgen -m 001122334456"},
        {"00:11:22:33:44:FF", 1, "uuidgen -m 001122334400"}, // no carry into the byte before
        {"00:11:22:33:44:55", 2, "uuidgen -m 001122334455"},
        {"00:11:22:33:44:55", -1, "uuidgen -m 001122334455"},
        {nullptr, 0, "uuidgen -m 00AABBCCDD10"},
        {nullptr, 1, "uuidgen -m 00AABBCCDD11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.asked);
        set_board_mac(c.ethaddr);
        std::string uuid = vesk_get_uuid_by_wlan_mac(c.which);
        EXPECT_EQ(vdev::journal(), (std::vector<std::string>{"board_config get ethaddr", c.asked}));
        // The tool's own line, its line end included.
        std::string mac = std::string(c.asked).substr(11);
        for (char &ch : mac)
            ch = static_cast<char>(tolower(ch));
        ASSERT_EQ(uuid.size(), 37u);
        EXPECT_EQ(uuid.substr(24), mac + "\n");
        EXPECT_EQ(uuid, vesk_get_uuid_by_wlan_mac(c.which)); // stable for one MAC
    }
}

TEST(Uuid, FailingToolGivesTheFixedText)
{
    vdev::put("/run/vdev/fail/uuidgen", "");
    for (int which : {0, 1, 2}) {
        EXPECT_STREQ(vesk_get_uuid_by_wlan_mac(which), "18de43f8-677c-4d3a-8920-00aabbccdd10") << which;
    }
    // The template never asks uuidgen, and keeps a buffer of its own.
    char *wlan = vesk_get_uuid_by_wlan_mac(0);
    EXPECT_STREQ(vesk_get_uuid(), "f0015eb6-69b9-436e-a383-001a2b3c4d5e");
    EXPECT_STREQ(wlan, "18de43f8-677c-4d3a-8920-00aabbccdd10");
}

} // namespace
