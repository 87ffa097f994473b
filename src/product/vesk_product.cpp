// The product table and the board's identity as board_config tells it.
#include "core/command.hpp"
#include "vesk_product.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <iterator>

#include "core/version.hpp"
#include "sysapi.h"

namespace {

constexpr const char *kManufacturerUrl = "http://www.corvane.com";

constexpr vesk_product_info kProductTable[] = {
    {
        .fw_upg_product_id = 0x0012,
        .fw_upg_vendor_id = 0x010E,
        .vendor_name = "QN.LAM",
        .vendor_mode = "Wireless Gigabit AP",
        .model_name = "QN.LAM",
        .domain_name = "QN.LAM",
        .web_title_name = "Wireless Gigabit AP",
        .web_copy_right = "",
        .web_hyper_link = "",
        .vendor_logo = "web_logo.image",
        .title_logo = "web_title.image",
        .banner_logo = "web_banner.image",
        .ap_wsc_manufacture = "Corvane",
        .ap_wsc_model_name = "Corvane Wireless Gigabit AP",
        .ap_wsc_device_name = "Corvane Wireless Gigabit AP",
        .menu_title_font_color = "FFFFFF",
        .submenu_font_color = "555555",
        .submenu_hover_color = "FFFFFF",
        .submenu_select_color = "000000",
        .submenu_bg_color = "F5F5F5",
        .menu_bg_color = "DADADA",
        .html_bg_color = "545454",
        .top_font_color = "000000",
        .top_hover_color = "999999",
        .topmenu_font_color = "C0C0C0",
        .topmenu_hover_color = "FFFFFF",
        .topmenu_select_color = "FFFFFF",
        .frame_title_font_color = "FFFFFF",
        .description_font_color = "003399",
        .heading_font_color = "FF0000",
        .label_font_color = "1E6AB6",
        .label_bg_color = "FFFFFF",
        .content_font_color = "000000",
        .content_bg_color = "FFFFFF",
        .footer_font_color = "CCCCCC",
        .tbl_profile_bg_color = "EEEEEE",
        .box_bg_color = "404343",
        .box_font_color = "FFFFFF",
        .model_name_font_color = "FFFFFF",
        // Ten listed entries (only "uk" named), the last ten absent.
        .support_language = {"uk", "", "", "", "", "", "", "", "", ""},
        .upnpd_friendly_name = "Wireless Gigabit AP",
        .upnpd_manufacture = "Corvane",
        .upnpd_manufacture_url = kManufacturerUrl,
        .upnpd_model_desc = "Wireless Gigabit AP",
        .upnpd_model_name = "QN.Lam",
        .upnpd_model_num = "QN.Lam",
        .upnpd_model_url = kManufacturerUrl,
    },
};

// The hardware ID of each row is its vendor ID over its product ID.
constexpr uint32_t row_hw_id(const vesk_product_info &row)
{
    return static_cast<uint32_t>(row.fw_upg_vendor_id) << 16 | row.fw_upg_product_id;
}
static_assert(row_hw_id(kProductTable[0]) == 0x10E0012);

constexpr bool is_colour(const char *s)
{
    for (int i = 0; i < 6; i++)
        if (!((s[i] >= '0' && s[i] <= '9') || (s[i] >= 'A' && s[i] <= 'F')))
            return false;
    return s[6] == '\0';
}
static_assert(is_colour(kProductTable[0].menu_title_font_color) && is_colour(kProductTable[0].label_font_color) &&
              is_colour(kProductTable[0].model_name_font_color));

constexpr int kNoRow = -1;
int32_t vesk_product_index = kNoRow; // row chosen so far

char board_hw_id_buffer[20];
char fw_version_buffer[128];

constexpr const char *kFwVersion = "1.0.0";
constexpr const char *kFwBuildDate = "2015/05/28";

const vesk_product_info &row() { return kProductTable[vesk_product_get_index()]; }

} // namespace

extern "C" {

uint16_t vesk_product_get_index(void)
{
    // A chosen row holds for the life of the process: asking the board
    // again could not change it, and would cost a web page one spawn per getter.
    if (vesk_product_index != kNoRow)
        return static_cast<uint16_t>(vesk_product_index);
    uint32_t hw_id = vesk_product_get_board_hw_id_hex();
    for (size_t i = 0; i < std::size(kProductTable); i++) {
        if (row_hw_id(kProductTable[i]) == hw_id) {
            vesk_product_index = static_cast<int32_t>(i);
            return static_cast<uint16_t>(i);
        }
    }
    // An unknown board is served row 0 and asked again next time.
    return 0;
}

unsigned int vesk_product_get_fw_upg_product_id(void) { return row().fw_upg_product_id; }
unsigned int vesk_product_get_fw_upg_vendor_id(void) { return row().fw_upg_vendor_id; }

#define VESK_PRODUCT_TEXT(field) \
    const char *vesk_product_get_##field(void) { return row().field; }
VESK_PRODUCT_TEXT(vendor_name)
VESK_PRODUCT_TEXT(vendor_mode)
VESK_PRODUCT_TEXT(model_name)
VESK_PRODUCT_TEXT(domain_name)
VESK_PRODUCT_TEXT(web_title_name)
VESK_PRODUCT_TEXT(web_copy_right)
VESK_PRODUCT_TEXT(web_hyper_link)
VESK_PRODUCT_TEXT(vendor_logo)
VESK_PRODUCT_TEXT(title_logo)
VESK_PRODUCT_TEXT(banner_logo)
VESK_PRODUCT_TEXT(ap_wsc_manufacture)
VESK_PRODUCT_TEXT(ap_wsc_model_name)
VESK_PRODUCT_TEXT(ap_wsc_device_name)
VESK_PRODUCT_TEXT(menu_title_font_color)
VESK_PRODUCT_TEXT(submenu_font_color)
VESK_PRODUCT_TEXT(submenu_hover_color)
VESK_PRODUCT_TEXT(submenu_select_color)
VESK_PRODUCT_TEXT(submenu_bg_color)
VESK_PRODUCT_TEXT(menu_bg_color)
VESK_PRODUCT_TEXT(html_bg_color)
VESK_PRODUCT_TEXT(top_font_color)
VESK_PRODUCT_TEXT(top_hover_color)
VESK_PRODUCT_TEXT(topmenu_font_color)
VESK_PRODUCT_TEXT(topmenu_hover_color)
VESK_PRODUCT_TEXT(topmenu_select_color)
VESK_PRODUCT_TEXT(frame_title_font_color)
VESK_PRODUCT_TEXT(description_font_color)
VESK_PRODUCT_TEXT(heading_font_color)
VESK_PRODUCT_TEXT(label_font_color)
VESK_PRODUCT_TEXT(label_bg_color)
VESK_PRODUCT_TEXT(content_font_color)
VESK_PRODUCT_TEXT(content_bg_color)
VESK_PRODUCT_TEXT(footer_font_color)
VESK_PRODUCT_TEXT(tbl_profile_bg_color)
VESK_PRODUCT_TEXT(box_bg_color)
VESK_PRODUCT_TEXT(box_font_color)
VESK_PRODUCT_TEXT(model_name_font_color)
VESK_PRODUCT_TEXT(upnpd_friendly_name)
VESK_PRODUCT_TEXT(upnpd_manufacture)
VESK_PRODUCT_TEXT(upnpd_manufacture_url)
VESK_PRODUCT_TEXT(upnpd_model_desc)
VESK_PRODUCT_TEXT(upnpd_model_name)
VESK_PRODUCT_TEXT(upnpd_model_num)
VESK_PRODUCT_TEXT(upnpd_model_url)
#undef VESK_PRODUCT_TEXT

const char *vesk_product_get_support_language(int n)
{
    const vesk_product_info &r = row();
    // Out of range is the caller's fault; answer null rather than read past the list.
    if (n < 1 || n > VESK_PRODUCT_LANGUAGES)
        return nullptr;
    return r.support_language[n - 1];
}

uint8_t vesk_product_get_board_domain(int second)
{
    unsigned int value = second ? 7 : 5;
    char buf[4] = {};
    if (second)
        vesk::cmd::capture(__func__, buf, "board_config get dom2");
    else
        vesk::cmd::capture(__func__, buf, "board_config get domain");
    if (buf[0] != '\0')
        sscanf(buf, "%x", &value); // a failed scan keeps the default
    return static_cast<uint8_t>(value);
}

char *vesk_product_get_board_hw_id_str(void)
{
    vesk::cmd::capture(__func__, board_hw_id_buffer, "board_config get hw_id");
    return board_hw_id_buffer;
}

uint32_t vesk_product_get_board_hw_id_hex(void)
{
    char digits[9] = {};
    strncpy(digits, vesk_product_get_board_hw_id_str(), sizeof digits - 1);
    return static_cast<uint32_t>(strtoul(digits, nullptr, 16));
}

char *vesk_product_get_fw_version(void)
{
    // Rewritten on each call so that a caller's change to it does not last.
    memset(fw_version_buffer, 0, sizeof fw_version_buffer);
    strcpy(fw_version_buffer, kFwVersion);
    return fw_version_buffer;
}

uint32_t vesk_product_get_fw_version_dec(void)
{
    return vesk::version_number(vesk_product_get_fw_version());
}

const char *vesk_product_get_fw_build_date(void) { return kFwBuildDate; }

} // extern "C"
