#include <ctype.h>
#include <gtest/gtest.h>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_mtd.h"

namespace {

using lines = std::vector<std::string>;

constexpr const char *kHeader = "dev:    size   erasesize  name\n";

TEST(Mtd, FindsPartitionByLinePosition)
{
    const std::string kernel = "mtd0: 00010000 00010000 \"Kernel\"\n", long_name(32, 'k');
    // The table after the header; no match gives -1 and size 0.
    const struct { const char *what; std::string table, name; int result, size; } cases[] = {
        {"second of two", "mtd0: 00030000 00010000 \"Boot\"\nmtd1: 00e90000 00010000 \"Kernel\"\n", "Kernel", 1,
         0xe90000},
        {"position, not token", "mtd7: 00400000 00010000 \"Kernel\"\n", "Kernel", 0, 0x400000},
        {"31 characters", "mtd0: 00001000 1 \"" + std::string(31, 'n') + "\"\n", std::string(31, 'n'), 0, 0x1000},
        {"prefix only", kernel, "Kern", -1, 0}, {"longer query", kernel, "Kernel2", -1, 0},
        {"name past the field's width", "mtd0: 1 1 \"" + long_name + "\"\n", long_name, -1, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::put("/proc/mtd", kHeader + c.table);
        int index = 99, size = 99;
        EXPECT_EQ(vesk_get_mtd_by_name(c.name.c_str(), &index, &size), c.result);
        EXPECT_EQ(std::make_pair(index, size), std::make_pair(c.result, c.size));
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
    EXPECT_EQ(std::make_pair(index, size), std::make_pair(5, 7));
    // The default device's table; null destinations are not written.
    EXPECT_EQ(vesk_get_mtd_by_name("Kernel", nullptr, nullptr), 3);
    vdev::remove("/proc/mtd");
    EXPECT_EQ(vesk_get_mtd_by_name("Kernel", &index, &size), -1);
    EXPECT_EQ(std::make_pair(index, size), std::make_pair(-1, 7));
}

TEST(Uuid, TemplateAndToolFromTheBoardMac)
{
    // The template's tail, and the MAC uuidgen is asked for with 0 (also 2) and with 1.
    const struct { const char *ethaddr, *tail, *mac0, *mac1; } cases[] = { // ethaddr nullptr: the tool fails
        {"AA:BB:CC:DD:EE:FF", "aabbccddeeff", "AABBCCDDEEFF", "AABBCCDDEE00"}, // no carry into the byte before
        {nullptr, "00aabbccdd10", "00AABBCCDD10", "00AABBCCDD11"},
        {"not a mac", "000000000000", "000000000000", "000000000001"}, // the tool ran: no fallback
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ethaddr ? c.ethaddr : "(tool fails)");
        vdev::remove("/run/vdev/fail/board_config");
        if (c.ethaddr)
            vdev::set_board("ethaddr", c.ethaddr);
        else
            vdev::put("/run/vdev/fail/board_config", "");
        vdev::clear_journal();
        char *uuid = vesk_get_uuid();
        EXPECT_STREQ(uuid, (std::string("f0015eb6-69b9-436e-a383-") + c.tail).c_str());
        EXPECT_EQ(vdev::commands(), lines{"board_config get ethaddr"});
        for (int which : {0, 1, 2}) {
            vdev::clear_journal();
            std::string got = vesk_get_uuid_by_wlan_mac(which), mac = which == 1 ? c.mac1 : c.mac0;
            EXPECT_EQ(vdev::commands(), (lines{"board_config get ethaddr", "uuidgen -m " + mac})) << which;
            for (char &ch : mac) // the tool's own line, lower case, its line end included
                ch = char(tolower(ch));
            EXPECT_EQ(got, got.substr(0, 24) + mac + "\n") << which;
        }
    }
    // A failing tool gives the fixed text, whatever the MAC.
    vdev::remove("/run/vdev/fail/board_config");
    vdev::set_board("ethaddr", "00:1A:2B:3C:4D:5E");
    vdev::put("/run/vdev/fail/uuidgen", "");
    for (int which : {0, 1})
        EXPECT_STREQ(vesk_get_uuid_by_wlan_mac(which), "18de43f8-677c-4d3a-8920-00aabbccdd10") << which;
}

} // namespace
