#include <gtest/gtest.h>

#include <string>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_mtd.h"

namespace {

constexpr const char *kHeader = "dev:    size   erasesize  name\n";

TEST(Mtd, FindsPartitionByLinePosition)
{
    const std::string kernel = "mtd0: 00010000 00010000 \"Kernel\"\n", long_name(40, 'k');
    const struct {
        const char *what;
        std::string table; // after the header
        std::string name;
        int result, size; // no match: -1 and 0
    } cases[] = {
        {"second of two", "mtd0: 00030000 00010000 \"Boot\"\nmtd1: 00e90000 00010000 \"Kernel\"\n", "Kernel", 1,
         0xe90000},
        {"position, not token", "mtd7: 00400000 00010000 \"Kernel\"\n", "Kernel", 0, 0x400000},
        {"first word of a spaced name", "mtd0: 00010000 00010000 \"rootfs data\"\n", "rootfs", 0, 0x10000},
        {"no closing quote", "mtd0: 00010000 00010000 \"Kernel\n", "Kernel", 0, 0x10000},
        {"over-long line counts once",
         "mtd0: 1 1 \"" + std::string(200, 'x') + "\"\nmtd1: 00020000 00010000 \"Kernel\"\n", "Kernel", 1, 0x20000},
        {"last line without newline", "mtd0: 1 1 \"A\"\nmtd1: 00000800 00010000 \"Kernel\"", "Kernel", 1, 0x800},
        {"31 characters", "mtd0: 00001000 1 \"" + std::string(31, 'n') + "\"\n", std::string(31, 'n'), 0, 0x1000},
        {"unknown", kernel, "Rootfs", -1, 0},    {"prefix only", kernel, "Kern", -1, 0},
        {"longer query", kernel, "Kernel2", -1, 0}, {"case differs", kernel, "kernel", -1, 0},
        {"empty name", kernel, "", -1, 0},
        {"spaced name whole", "mtd0: 00010000 00010000 \"rootfs data\"\n", "rootfs data", -1, 0},
        {"unquoted name", "mtd0: 00010000 00010000 Kernel\n", "Kernel", -1, 0},
        {"name past the field's width", "mtd0: 1 1 \"" + long_name + "\"\n", long_name, -1, 0},
        {"its first 31 characters", "mtd0: 1 1 \"" + long_name + "\"\n", long_name.substr(0, 31), -1, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::put("/proc/mtd", kHeader + c.table);
        int index = 99, size = 99;
        EXPECT_EQ(vesk_get_mtd_by_name(c.name.c_str(), &index, &size), c.result);
        EXPECT_EQ(index, c.result);
        EXPECT_EQ(size, c.size);
    }
    // The header line is never a partition.
    vdev::put("/proc/mtd", kernel);
    EXPECT_EQ(vesk_get_mtd_by_name("Kernel", nullptr, nullptr), -1);
}

TEST(Mtd, ArgumentsAndMissingTable)
{
    int index = 5, size = 7;
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_mtd_by_name(nullptr, &index, &size), -1); }),
              "vesk_get_mtd_by_name: inMtdName = NULL!\n");
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
        const char *tail; // behind "f0015eb6-69b9-436e-a383-"
    } cases[] = {
        {"00:11:22:33:44:55", "001122334455"}, {"AA:BB:CC:DD:EE:FF", "aabbccddeeff"}, {"aabbccddee01", "aabbccddee01"},
        {nullptr, "00aabbccdd10"},             {"not a mac", "000000000000"}, // the tool ran: no fallback
        {"", "000000000000"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ethaddr ? c.ethaddr : "(tool fails)");
        set_board_mac(c.ethaddr);
        char *uuid = vesk_get_uuid();
        EXPECT_STREQ(uuid, (std::string("f0015eb6-69b9-436e-a383-") + c.tail).c_str());
        EXPECT_EQ(vesk_get_uuid(), uuid);
        EXPECT_EQ(vdev::commands(), (std::vector<std::string>{"board_config get ethaddr", "board_config get ethaddr"}));
    }
}

TEST(Uuid, ToolMakesItFromTheMacOrItsSuccessorElseFixedText)
{
    const struct {
        const char *ethaddr; // nullptr: the board tool fails
        int which;
        const char *mac; // asked for, then the tail of the tool's line
    } cases[] = {
        {"00:11:22:33:44:55", 0, "001122334455"}, {"00:11:22:33:44:55", 1, "001122334456"},
        {"00:11:22:33:44:FF", 1, "001122334400"}, // no carry into the byte before
        {"00:11:22:33:44:55", 2, "001122334455"}, {"00:11:22:33:44:55", -1, "001122334455"},
        {nullptr, 0, "00AABBCCDD10"},             {nullptr, 1, "00AABBCCDD11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.mac);
        set_board_mac(c.ethaddr);
        std::string uuid = vesk_get_uuid_by_wlan_mac(c.which), mac = c.mac;
        EXPECT_EQ(vdev::commands(), (std::vector<std::string>{"board_config get ethaddr", "uuidgen -m " + mac}));
        for (char &ch : mac)
            ch = static_cast<char>(tolower(ch));
        ASSERT_EQ(uuid.size(), 37u);
        EXPECT_EQ(uuid.substr(24), mac + "\n"); // the tool's own line, its line end included
        EXPECT_EQ(uuid, vesk_get_uuid_by_wlan_mac(c.which)); // stable for one MAC
    }
    // A failing tool gives the fixed text, whatever the MAC.
    set_board_mac("00:1A:2B:3C:4D:5E");
    vdev::put("/run/vdev/fail/uuidgen", "");
    for (int which : {0, 1, 2})
        EXPECT_STREQ(vesk_get_uuid_by_wlan_mac(which), "18de43f8-677c-4d3a-8920-00aabbccdd10") << which;
    // The template never asks uuidgen, and keeps a buffer of its own.
    char *wlan = vesk_get_uuid_by_wlan_mac(0);
    EXPECT_STREQ(vesk_get_uuid(), "f0015eb6-69b9-436e-a383-001a2b3c4d5e");
    EXPECT_STREQ(wlan, "18de43f8-677c-4d3a-8920-00aabbccdd10");
}

} // namespace
