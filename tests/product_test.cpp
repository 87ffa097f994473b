#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "vdev.hpp"
#include "vesk_product.h"

namespace {

// The row's 44 texts in the header's order, each followed by '|', and the
// FNV-1a digest of that text as the product's own table gives it: a getter
// that answers with another field's text changes the digest.
TEST(Product, EveryTextGetterAnswersItsOwnField)
{
    const char *(*const getters[])(void) = {
        vesk_product_get_vendor_name, vesk_product_get_vendor_mode, vesk_product_get_model_name,
        vesk_product_get_domain_name, vesk_product_get_web_title_name, vesk_product_get_web_copy_right,
        vesk_product_get_web_hyper_link, vesk_product_get_vendor_logo, vesk_product_get_title_logo,
        vesk_product_get_banner_logo, vesk_product_get_ap_wsc_manufacture, vesk_product_get_ap_wsc_model_name,
        vesk_product_get_ap_wsc_device_name, vesk_product_get_menu_title_font_color, vesk_product_get_submenu_font_color,
        vesk_product_get_submenu_hover_color, vesk_product_get_submenu_select_color, vesk_product_get_submenu_bg_color,
        vesk_product_get_menu_bg_color, vesk_product_get_html_bg_color, vesk_product_get_top_font_color,
        vesk_product_get_top_hover_color, vesk_product_get_topmenu_font_color, vesk_product_get_topmenu_hover_color,
        vesk_product_get_topmenu_select_color, vesk_product_get_frame_title_font_color,
        vesk_product_get_description_font_color, vesk_product_get_heading_font_color, vesk_product_get_label_font_color,
        vesk_product_get_label_bg_color, vesk_product_get_content_font_color, vesk_product_get_content_bg_color,
        vesk_product_get_footer_font_color, vesk_product_get_tbl_profile_bg_color, vesk_product_get_box_bg_color,
        vesk_product_get_box_font_color, vesk_product_get_model_name_font_color, vesk_product_get_upnpd_friendly_name,
        vesk_product_get_upnpd_manufacture, vesk_product_get_upnpd_manufacture_url, vesk_product_get_upnpd_model_desc,
        vesk_product_get_upnpd_model_name, vesk_product_get_upnpd_model_num, vesk_product_get_upnpd_model_url,
    };
    std::string joined;
    for (auto get : getters) {
        const char *text = get();
        ASSERT_NE(text, nullptr);
        joined += std::string(text) + "|";
    }
    uint64_t digest = 14695981039346656037ull;
    for (unsigned char c : joined)
        digest = (digest ^ c) * 1099511628211ull;
    EXPECT_EQ(digest, 0x33fbd6815bd1551eull) << joined;
}

TEST(Product, NumbersLanguagesAndVersion)
{
    // Languages count from 1; slots 2 to 10 are empty.
    const std::pair<int, const char *> langs[] = {{1, "uk"}, {2, ""}, {10, ""}, {11, nullptr}};
    for (auto [n, value] : langs)
        EXPECT_EQ(vesk_product_get_support_language(n) ? vesk_product_get_support_language(n) : "(null)",
                  std::string(value ? value : "(null)")) << n;
    EXPECT_EQ(vesk_product_get_fw_upg_vendor_id(), 270u);
    // The version text is written anew on each call, over what a caller left there.
    char *v = vesk_product_get_fw_version();
    EXPECT_STREQ(v, "1.0.0");
    strcpy(v, "9.9.9-changed");
    EXPECT_EQ(vesk_product_get_fw_version(), v);
    EXPECT_STREQ(v, "1.0.0");
    EXPECT_EQ(v[6], '\0'); // the caller's longer text is gone too
}

TEST(Product, BoardDomainFallsBackToItsDefault)
{
    const struct { const char *printed; uint8_t first, second; } cases[] = { // nullptr: the board has no such key
        {nullptr, 5, 7}, {"", 5, 7}, {"1F", 31, 31}, {"0", 0, 0},
        {"123456", 0x23, 0x23}, // cut to 3 characters by the 4-byte buffer, low 8 bits kept
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.printed ? c.printed : "(absent)");
        if (c.printed)
            vdev::set_board("domain", c.printed), vdev::set_board("dom2", c.printed);
        else
            vdev::put("/run/vdev/board.conf", "hw_id=010E0012\n");
        vdev::clear_journal();
        EXPECT_EQ((std::array{vesk_product_get_board_domain(0), vesk_product_get_board_domain(1), // in this order
                              vesk_product_get_board_domain(-3)}), (std::array{c.first, c.second, c.second}));
        EXPECT_EQ(vdev::commands(), (std::vector<std::string>{"board_config get domain", "board_config get dom2",
                                                              "board_config get dom2"}));
    }
}

TEST(Product, HardwareIdTextNumberAndRow)
{
    // Boards of other products first: the first match keeps its row for the
    // rest of the process, and the table getters stop asking the board.
    const struct { const char *hw_id, *text; uint32_t value; long asks; } cases[] = { // asks: of the table getters
        {"", "\n", 0, 4}, {"0123456789ABCDEF0123456789", "0123456789ABCDEF012", 0x01234567, 4}, // 19 characters kept
        {"010E0012FF", "010E0012FF\n", 0x010E0012, 1}, // first 8 digits only
        {"10E0012", "10E0012\n", 0x010E0012, 0}, {"ffffffff", "ffffffff\n", 0xFFFFFFFF, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.hw_id);
        vdev::set_board("hw_id", c.hw_id);
        vdev::clear_journal(); // row 0 serves any id
        EXPECT_EQ(std::make_tuple(vesk_product_get_index(), std::string(vesk_product_get_model_name()),
                                  vesk_product_get_fw_upg_product_id(), std::string(vesk_product_get_support_language(1))),
                  std::make_tuple(0, "QN.LAM", 18u, "uk"));
        EXPECT_EQ(vdev::commands(), std::vector<std::string>(c.asks, "board_config get hw_id"));
        // The hardware-ID getters ask the board on every call.
        char *text = vesk_product_get_board_hw_id_str();
        EXPECT_STREQ(text, c.text);
        EXPECT_EQ(vesk_product_get_board_hw_id_hex(), c.value);
        EXPECT_EQ(vesk_product_get_board_hw_id_str(), text); // one static buffer
    }
}

TEST(FwNotify, AllNineLanguagesMustBePresent)
{
    // Look-alikes that count for nothing.
    for (const char *extra : {"jp_xml.txt", "uk_xml.txt.bak", "UK_xml.txt", "xuk_xml.txt", "uk_xml.TXT"})
        vdev::put(std::string("/var/") + extra, "");
    for (const char *lang : {"uk", "nl", "de", "dk", "es", "fr", "it", "pt", "se"}) {
        EXPECT_EQ(vesk_product_check_fw_notify(), 0) << "before " << lang;
        vdev::put(std::string("/var/") + lang + "_xml.txt", "");
    }
    EXPECT_EQ(vesk_product_check_fw_notify(), 1);
}

TEST(FwNotify, NewerVersionByNumber)
{
    const struct { const char *text; int newer; } cases[] = {
        {"1.0.1", 1}, {"1.0.0", 0}, {"1.1", 1}, {"0.99.99", 0}, {"1.0", 0}, {"1", 0}, {"abc", 0}, {nullptr, 0},
        {"1.0.0.5", 0}, {"1.0.1beta", 1}, {"0.100.1", 1}, // minor carries: 0*10000 + 100*100 + 1 = 10001
    };
    for (const auto &c : cases)
        EXPECT_EQ(vesk_product_check_new_fw_by_str(c.text), c.newer) << (c.text ? c.text : "(null)");
}

} // namespace
