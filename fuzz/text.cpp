// Parsers of text a caller passes in: addresses, port ranges, escapes,
// version texts, and the number formatters over raw words.
#include <stdlib.h>
#include <string.h>

#include "fuzz.hpp"
#include "vesk_hr.h"
#include "vesk_ip.h"
#include "vesk_mac.h"
#include "vesk_product.h"
#include "vesk_time.h"
#include "vesk_util.h"
#include "vesk_wan.h"

namespace {

template <typename T> T word(const char *data, size_t size, size_t at)
{
    T v = 0;
    if (at < size)
        memcpy(&v, data + at, size - at < sizeof v ? size - at : sizeof v);
    return v;
}

VESK_FUZZ_TABLE(
    {"mac", nullptr,
     [](const char *text, size_t) {
         unsigned char bin[6];
         vesk_mac_str_2_bin(bin, text);
         vesk_mac_is_valid_str(text);
         vesk_mac_to_vendor_name(text);
         vesk_mac_is_in_range_str(text, "00:11:22:33:44:55", text);
         char colon[18] = {};
         if (strlen(text) < sizeof colon) {
             memcpy(colon, text, strlen(text));
             vesk_mac_add_colon(colon);
         }
     }},
    {"ipv4", nullptr,
     [](const char *text, size_t) {
         vesk_str_2_ipaddr(text);
         vesk_check_same_subnet_str(text, "192.0.2.1", 0xffffff00u);
     }},
    {"ports", nullptr,
     [](const char *text, size_t) {
         unsigned short list[16];
         char back[128];
         vesk_wan_port_ranger_string_to_list(text, list, 16);
         vesk_wan_port_range_list_to_string(list, 16, back, sizeof back);
     }},
    {"escape", nullptr,
     [](const char *text, size_t) {
         size_t room = 2 * strlen(text) + 1;
         char *out = static_cast<char *>(malloc(room));
         vesk_util_check_string_on_web(text, out);
         vesk_util_check_string_on_shell_cmd(text, out);
         free(out);
     }},
    {"version", nullptr, [](const char *text, size_t) { vesk_product_check_new_fw_by_str(text); }},
    {"hr", nullptr,
     [](const char *data, size_t size) {
         auto v = word<unsigned long long>(data, size, 0), unit = word<unsigned long long>(data, size, 8);
         vesk_hr_u64_to_str(v, unit);
         vesk_hr_u32_to_str(static_cast<unsigned int>(v));
         vesk_parse_pkt_unit(v);
         vesk_transfer_time_format(static_cast<unsigned int>(v), static_cast<int>(unit & 1));
     },
     true}, );

} // namespace
