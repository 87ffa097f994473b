#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <string>

#include "output_of.hpp"
#include "vesk_mac.h"

namespace {

const char *by_oui(uint32_t oui)
{
    vesk_oui_entry e{};
    e.oui = oui;
    strcpy(e.vendor_name, "ignored");
    return vesk_mac_oui_to_vendor_name(e);
}

TEST(Oui, SortedTableBehindTheSentinelFindsEveryKeyAndNothingBetween)
{
    // Records in the exported table, the sentinel included: the symbol's size.
    Dl_info info;
    void *entry = nullptr;
    ASSERT_NE(dladdr1(vesk_oui_list, &info, &entry, RTLD_DL_SYMENT), 0);
    const size_t n = entry ? static_cast<const ElfW(Sym) *>(entry)->st_size / sizeof(vesk_oui_entry) : 0;
    ASSERT_GT(n, 30000u) << "listing " << VESK_OUI_LISTING;
    EXPECT_EQ(vesk_oui_list[0].oui, 0xFFFFFFu);
    EXPECT_STREQ(vesk_oui_list[0].vendor_name, "DUMMY");
    for (size_t i = 1; i < n; i++) {
        const vesk_oui_entry &e = vesk_oui_list[i];
        ASSERT_EQ(e.vendor_name[sizeof e.vendor_name - 1], '\0') << i;
        // The answer is the name of a record with that key.
        const char *got = by_oui(e.oui);
        const auto *found = got ? reinterpret_cast<const vesk_oui_entry *>(got - offsetof(vesk_oui_entry, vendor_name)) : nullptr;
        ASSERT_TRUE(found && found > vesk_oui_list && found < vesk_oui_list + n && found->oui == e.oui) << std::hex << e.oui;
        // Sorted, below the sentinel's key, and no key between two records (or above the last) is found.
        const uint32_t next = i + 1 < n ? vesk_oui_list[i + 1].oui : 0xFFFFFF;
        ASSERT_LE(e.oui, next) << "record " << i;
        ASSERT_TRUE(next <= e.oui + 1 || (!by_oui(e.oui + 1) && !by_oui(next - 1))) << std::hex << e.oui;
    }
    for (uint32_t key : {0xFFFFFFu, 0x1000000u, 0xFFFFFFFFu}) // the sentinel is never found, nor a wider key
        EXPECT_EQ(by_oui(key), nullptr) << std::hex << key;
}

TEST(Oui, RowsOfTheRegistryListing)
{
    // Rows that every listing carries. A key listed more than once answers
    // with its last row: the bisection meets the later rows first.
    const struct { uint32_t oui; const char *name; } cases[] = {
        {0x000000, "XEROX CORPORATION"}, {0x0001C8, "CONRAD CORP."}, {0x080030, "CERN"}, {0x0270B3, "DATA RECALL LTD."},
        {0xACDE48, "Private"},           {0x010000, nullptr},        {0xFCFFFF, nullptr},
    };
    for (const auto &c : cases) {
        const char *got = by_oui(c.oui);
        EXPECT_EQ(got ? got : "(none)", std::string(c.name ? c.name : "(none)")) << std::hex << c.oui;
    }
}

TEST(Oui, MacTextLooksUpItsPrefix)
{
    const struct { const char *mac; uint32_t key; } cases[] = { // key: the key it must look up as
        {"not a mac", 0x000000},         // refused text: six zero bytes
        {"02:70:B3:11:22:33", 0x0070B3}, // locally administered bit cleared
        {"03:00:00:11:22:33", 0x010000}, {"FE:FF:FF:00:00:00", 0xFCFFFF}, // the group bit stays
    };
    for (const auto &c : cases)
        EXPECT_EQ(vesk_mac_to_vendor_name(c.mac), by_oui(c.key)) << c.mac;
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_mac_to_vendor_name(nullptr), nullptr); }),
              "Error! vesk_mac_str_2_bin input is NULL!\n");
}

} // namespace
