#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "output_of.hpp"
#include "vesk_mac.h"

namespace {

struct row {
    uint32_t oui;
    std::string name;
};

// The registry rows of the listing the library was built from, read here
// on their own: "XX-XX-XX   (hex)\t\tName\r\n", in listing order.
const std::vector<row> &rows()
{
    static const std::vector<row> all = [] {
        std::ifstream in(VESK_OUI_LISTING, std::ios::binary);
        std::vector<row> rows;
        std::string line;
        while (std::getline(in, line)) {
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            size_t hex = line.find("(hex)");
            if (hex == std::string::npos || line.size() < 8 || line[2] != '-' || line[5] != '-')
                continue;
            std::string digits = line.substr(0, 2) + line.substr(3, 2) + line.substr(6, 2);
            size_t name = line.find_first_not_of('\t', hex + 5);
            rows.push_back({static_cast<uint32_t>(std::stoul(digits, nullptr, 16)),
                            name == std::string::npos ? "" : line.substr(name, 99)});
        }
        return rows;
    }();
    return all;
}

// Names of each key, in listing order.
std::map<uint32_t, std::vector<std::string>> names_by_key()
{
    std::map<uint32_t, std::vector<std::string>> names;
    for (const row &r : rows())
        names[r.oui].push_back(r.name);
    return names;
}

const char *by_oui(uint32_t oui)
{
    vesk_oui_entry e{};
    e.oui = oui;
    strcpy(e.vendor_name, "ignored");
    return vesk_mac_oui_to_vendor_name(e);
}

std::string mac_text(uint32_t oui)
{
    char text[32];
    snprintf(text, sizeof text, "%02X:%02X:%02X:11:22:33", (oui >> 16) & 0xFF, (oui >> 8) & 0xFF, oui & 0xFF);
    return text;
}

TEST(Oui, TableHoldsTheListingSortedBehindTheSentinel)
{
    ASSERT_GT(rows().size(), 1000u) << "listing " << VESK_OUI_LISTING;
    std::vector<row> sorted = rows();
    std::stable_sort(sorted.begin(), sorted.end(), [](const row &a, const row &b) { return a.oui < b.oui; });

    Dl_info info; // the exported symbol is exactly as large as the listing asks for
    void *entry = nullptr;
    ASSERT_NE(dladdr1(vesk_oui_list, &info, &entry, RTLD_DL_SYMENT), 0);
    const auto *sym = static_cast<const ElfW(Sym) *>(entry);
    ASSERT_NE(sym, nullptr);
    EXPECT_EQ(sym->st_size, (sorted.size() + 1) * 104);

    EXPECT_EQ(vesk_oui_list[0].oui, 0xFFFFFFu);
    EXPECT_STREQ(vesk_oui_list[0].vendor_name, "DUMMY");
    for (size_t i = 0; i < sorted.size(); i++) {
        const vesk_oui_entry &e = vesk_oui_list[i + 1];
        ASSERT_EQ(e.oui, sorted[i].oui) << "record " << i + 1;
        // Bytes as they are, zero-filled to the end of the field.
        char want[100] = {};
        memcpy(want, sorted[i].name.data(), sorted[i].name.size());
        ASSERT_EQ(memcmp(e.vendor_name, want, sizeof want), 0) << "record " << i + 1 << ": " << sorted[i].name;
    }
}

TEST(Oui, EveryListedKeyFindsOneOfItsRows)
{
    const auto names = names_by_key();
    size_t local = 0;
    for (const auto &[oui, list] : names) {
        const char *got = by_oui(oui);
        ASSERT_NE(got, nullptr) << std::hex << oui;
        ASSERT_NE(std::find(list.begin(), list.end(), got), list.end()) << std::hex << oui << " gave " << got;
        ASSERT_GE(got, vesk_oui_list[1].vendor_name); // the pointer leads into the table
        // From MAC text too; a locally administered address looks up the key with that bit clear.
        ASSERT_EQ(vesk_mac_to_vendor_name(mac_text(oui).c_str()), by_oui(oui & ~0x020000u)) << mac_text(oui);
        local += (oui & 0x020000) != 0;
    }
    EXPECT_GT(local, 0u);
    // Old registry rows that every listing carries: two for 00:01:C8 and
    // three for 08:00:30. The bisection meets the later rows first.
    ASSERT_EQ(names.at(0x0001C8).size(), 2u);
    ASSERT_EQ(names.at(0x080030).size(), 3u);
    EXPECT_EQ(by_oui(0x0001C8), names.at(0x0001C8)[1]);
    EXPECT_EQ(by_oui(0x080030), names.at(0x080030)[2]);
}

TEST(Oui, MissesAndTheSentinel)
{
    const auto names = names_by_key();
    ASSERT_EQ(names.count(0xFFFFFF), 0u);
    EXPECT_EQ(by_oui(0xFFFFFF), nullptr); // the sentinel is never found
    EXPECT_EQ(by_oui(0x1000000), nullptr);
    EXPECT_EQ(by_oui(0xFFFFFFFF), nullptr);
    // Every key between two listed ones, and beyond the last, misses.
    size_t misses = 0;
    uint32_t prev = 0;
    for (const auto &[oui, unused] : names) {
        if (oui > prev + 1) {
            EXPECT_EQ(by_oui(prev + 1), nullptr) << std::hex << prev + 1;
            EXPECT_EQ(by_oui(oui - 1), nullptr) << std::hex << oui - 1;
            misses++;
        }
        prev = oui;
    }
    EXPECT_GT(misses, 1000u);
    EXPECT_EQ(by_oui(names.rbegin()->first + 1), nullptr);
}

TEST(Oui, MacTextLooksUpItsPrefix)
{
    ASSERT_EQ(names_by_key().count(0x000000), 1u);
    const struct {
        const char *mac;
        uint32_t key; // the key it must look up as
    } cases[] = {
        {"not a mac", 0x000000},         // refused text: six zero bytes
        {"02:00:00:11:22:33", 0x000000}, // locally administered bit cleared
        {"03:00:00:11:22:33", 0x010000}, // the group bit stays
        {"001a2b3c4d5e", 0x001A2B},
        {"FE:FF:FF:00:00:00", 0xFCFFFF},
    };
    for (const auto &c : cases)
        EXPECT_EQ(vesk_mac_to_vendor_name(c.mac), by_oui(c.key)) << c.mac;
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_mac_to_vendor_name(nullptr), nullptr); }),
              "Error! vesk_mac_str_2_bin input is NULL!\n");
}

} // namespace
