/* Product identity: one constant row per product (IDs, names, web branding,
 * colours), chosen by the board's hardware ID; the board's own hardware ID
 * and domain codes; the firmware's version; the firmware-notice checks.
 *
 * A table getter reads the hardware ID through "board_config get hw_id"
 * until it matches a row; from then on the row is kept for the life of the
 * process and the getters run no command. On a board whose ID matches no
 * row, each call runs the board tool once. Strings returned by the table
 * getters are constants: never change or free them. */
#ifndef VESK_PRODUCT_H
#define VESK_PRODUCT_H

#include <stdint.h>

#include "vesk_defs.h"

/* Number of entries of support_language. */
#define VESK_PRODUCT_LANGUAGES 20

/* One row of the product table. A colour is "RRGGBB" in upper-case hex. */
typedef struct vesk_product_info {
    uint16_t fw_upg_product_id; /* low half of the board's hardware ID */
    uint16_t fw_upg_vendor_id;  /* high half of the board's hardware ID */
    const char *vendor_name;
    const char *vendor_mode;
    const char *model_name;
    const char *domain_name;
    const char *web_title_name;
    const char *web_copy_right;
    const char *web_hyper_link;
    const char *vendor_logo;
    const char *title_logo;
    const char *banner_logo;
    const char *ap_wsc_manufacture;
    const char *ap_wsc_model_name;
    const char *ap_wsc_device_name;
    const char *menu_title_font_color;
    const char *submenu_font_color;
    const char *submenu_hover_color;
    const char *submenu_select_color;
    const char *submenu_bg_color;
    const char *menu_bg_color;
    const char *html_bg_color;
    const char *top_font_color;
    const char *top_hover_color;
    const char *topmenu_font_color;
    const char *topmenu_hover_color;
    const char *topmenu_select_color;
    const char *frame_title_font_color;
    const char *description_font_color;
    const char *heading_font_color;
    const char *label_font_color;
    const char *label_bg_color;
    const char *content_font_color;
    const char *content_bg_color;
    const char *footer_font_color;
    const char *tbl_profile_bg_color;
    const char *box_bg_color;
    const char *box_font_color;
    const char *model_name_font_color;
    const char *support_language[VESK_PRODUCT_LANGUAGES]; /* counted from 1 by the getter */
    const char *upnpd_friendly_name;
    const char *upnpd_manufacture;
    const char *upnpd_manufacture_url;
    const char *upnpd_model_desc;
    const char *upnpd_model_name;
    const char *upnpd_model_num;
    const char *upnpd_model_url;
} vesk_product_info;

VESK_BEGIN_DECLS

/* The row of the product table for this board. Reads the hardware ID until
 * a row matches and keeps that row; a board whose ID matches no row is
 * served row 0 and asked again on the next call. */
VESK_API uint16_t vesk_product_get_index(void);

/* The firmware-upgrade IDs of the row: product 0x0012, vendor 0x010E. */
VESK_API unsigned int vesk_product_get_fw_upg_product_id(void);
VESK_API unsigned int vesk_product_get_fw_upg_vendor_id(void);

/* The row's names, logos and colours (constant strings, never null). */
VESK_API const char *vesk_product_get_vendor_name(void);
VESK_API const char *vesk_product_get_vendor_mode(void);
VESK_API const char *vesk_product_get_model_name(void);
VESK_API const char *vesk_product_get_domain_name(void);
VESK_API const char *vesk_product_get_web_title_name(void);
VESK_API const char *vesk_product_get_web_copy_right(void);
VESK_API const char *vesk_product_get_web_hyper_link(void);
VESK_API const char *vesk_product_get_vendor_logo(void);
VESK_API const char *vesk_product_get_title_logo(void);
VESK_API const char *vesk_product_get_banner_logo(void);
VESK_API const char *vesk_product_get_ap_wsc_manufacture(void);
VESK_API const char *vesk_product_get_ap_wsc_model_name(void);
VESK_API const char *vesk_product_get_ap_wsc_device_name(void);
VESK_API const char *vesk_product_get_menu_title_font_color(void);
VESK_API const char *vesk_product_get_submenu_font_color(void);
VESK_API const char *vesk_product_get_submenu_hover_color(void);
VESK_API const char *vesk_product_get_submenu_select_color(void);
VESK_API const char *vesk_product_get_submenu_bg_color(void);
VESK_API const char *vesk_product_get_menu_bg_color(void);
VESK_API const char *vesk_product_get_html_bg_color(void);
VESK_API const char *vesk_product_get_top_font_color(void);
VESK_API const char *vesk_product_get_top_hover_color(void);
VESK_API const char *vesk_product_get_topmenu_font_color(void);
VESK_API const char *vesk_product_get_topmenu_hover_color(void);
VESK_API const char *vesk_product_get_topmenu_select_color(void);
VESK_API const char *vesk_product_get_frame_title_font_color(void);
VESK_API const char *vesk_product_get_description_font_color(void);
VESK_API const char *vesk_product_get_heading_font_color(void);
VESK_API const char *vesk_product_get_label_font_color(void);
VESK_API const char *vesk_product_get_label_bg_color(void);
VESK_API const char *vesk_product_get_content_font_color(void);
VESK_API const char *vesk_product_get_content_bg_color(void);
VESK_API const char *vesk_product_get_footer_font_color(void);
VESK_API const char *vesk_product_get_tbl_profile_bg_color(void);
VESK_API const char *vesk_product_get_box_bg_color(void);
VESK_API const char *vesk_product_get_box_font_color(void);
VESK_API const char *vesk_product_get_model_name_font_color(void);
VESK_API const char *vesk_product_get_upnpd_friendly_name(void);
VESK_API const char *vesk_product_get_upnpd_manufacture(void);
VESK_API const char *vesk_product_get_upnpd_manufacture_url(void);
VESK_API const char *vesk_product_get_upnpd_model_desc(void);
VESK_API const char *vesk_product_get_upnpd_model_name(void);
VESK_API const char *vesk_product_get_upnpd_model_num(void);
VESK_API const char *vesk_product_get_upnpd_model_url(void);

/* Language n of the row, counted from 1 to 20: a language word, an empty
 * string, or null where the row lists nothing. n outside 1..20 gives null. */
VESK_API const char *vesk_product_get_support_language(int n);

/* The board's domain code from "board_config get domain" (second == 0,
 * default 5) or "board_config get dom2" (second != 0, default 7), read as
 * hex; the default when the tool prints nothing. */
VESK_API uint8_t vesk_product_get_board_domain(int second);

/* The output of "board_config get hw_id", as printed, in a static 20-byte
 * buffer that the next call overwrites. */
VESK_API char *vesk_product_get_board_hw_id_str(void);

/* The hardware ID as a number: the first 8 characters of its text read as
 * hex; 0 when they hold no digits. */
VESK_API uint32_t vesk_product_get_board_hw_id_hex(void);

/* The firmware version "1.0.0", rewritten into a static 128-byte buffer on
 * every call. */
VESK_API char *vesk_product_get_fw_version(void);

/* The firmware version as major * 10000 + minor * 100 + patch (10000). */
VESK_API uint32_t vesk_product_get_fw_version_dec(void);

/* The firmware's build date, "2015/05/28". */
VESK_API const char *vesk_product_get_fw_build_date(void);

/* 1 when all nine firmware-notice files "<lang>_xml.txt" (uk nl de dk es
 * fr it pt se) are present in /var, else 0 (also when /var is unreadable). */
VESK_API int vesk_product_check_fw_notify(void);

/* 1 when the version text "major.minor[.patch]" is newer than the running
 * firmware, compared as major * 10000 + minor * 100 + patch; 0 when it is
 * not newer, null, or names no major and minor. */
VESK_API int vesk_product_check_new_fw_by_str(const char *str);

VESK_END_DECLS

#endif
