#include <stdio.h>

#include "cli.hpp"
#include "vesk_mtd.h"
#include "vesk_product.h"

namespace {

int info(int, char **)
{
    const struct {
        const char *name;
        const char *(*get)(void);
    } texts[] = {
        {"vendor_name", vesk_product_get_vendor_name},
        {"vendor_mode", vesk_product_get_vendor_mode},
        {"model_name", vesk_product_get_model_name},
        {"domain_name", vesk_product_get_domain_name},
        {"web_title_name", vesk_product_get_web_title_name},
        {"vendor_logo", vesk_product_get_vendor_logo},
        {"title_logo", vesk_product_get_title_logo},
        {"banner_logo", vesk_product_get_banner_logo},
        {"ap_wsc_manufacture", vesk_product_get_ap_wsc_manufacture},
        {"ap_wsc_model_name", vesk_product_get_ap_wsc_model_name},
        {"ap_wsc_device_name", vesk_product_get_ap_wsc_device_name},
        {"upnpd_friendly_name", vesk_product_get_upnpd_friendly_name},
        {"upnpd_manufacture", vesk_product_get_upnpd_manufacture},
        {"upnpd_manufacture_url", vesk_product_get_upnpd_manufacture_url},
        {"upnpd_model_desc", vesk_product_get_upnpd_model_desc},
        {"upnpd_model_name", vesk_product_get_upnpd_model_name},
        {"upnpd_model_num", vesk_product_get_upnpd_model_num},
        {"upnpd_model_url", vesk_product_get_upnpd_model_url},
    };
    printf("row %u\nfw_upg_product_id 0x%04X\nfw_upg_vendor_id 0x%04X\n", vesk_product_get_index(),
           vesk_product_get_fw_upg_product_id(), vesk_product_get_fw_upg_vendor_id());
    for (const auto &t : texts)
        printf("%s %s\n", t.name, t.get());
    return 0;
}

int hw_id(int, char **)
{
    printf("0x%08X\n", vesk_product_get_board_hw_id_hex());
    return 0;
}

int domain(int argc, char **argv)
{
    int second = argc > 0 && argv[0][0] == '2';
    printf("%u\n", vesk_product_get_board_domain(second));
    return 0;
}

int version(int, char **)
{
    printf("%s %u %s\n", vesk_product_get_fw_version(), vesk_product_get_fw_version_dec(),
           vesk_product_get_fw_build_date());
    return 0;
}

int language(int, char **argv)
{
    int n;
    if (!cli::parse_int(argv[0], &n) || n < 1 || n > VESK_PRODUCT_LANGUAGES) {
        fprintf(stderr, "vesk product language: N is 1 to %d\n", VESK_PRODUCT_LANGUAGES);
        return 2;
    }
    return cli::print_text(vesk_product_get_support_language(n));
}

int notify(int, char **) { return printf("%d\n", vesk_product_check_fw_notify()) < 0; }
int newer(int, char **argv) { return printf("%d\n", vesk_product_check_new_fw_by_str(argv[0])) < 0; }

int mtd(int, char **argv)
{
    int index, size = 0;
    if (vesk_get_mtd_by_name(argv[0], &index, &size) < 0) {
        fprintf(stderr, "vesk product mtd: no flash partition %s\n", argv[0]);
        return 1;
    }
    printf("/dev/mtd%d %d\n", index, size);
    return 0;
}

int uuid(int, char **) { return cli::print_text(vesk_get_uuid()); }

int wlan_uuid(int argc, char **argv)
{
    int which = 0;
    if (argc > 0 && !cli::parse_int(argv[0], &which)) {
        fprintf(stderr, "vesk product wlan-uuid: %s is not a number\n", argv[0]);
        return 2;
    }
    fputs(vesk_get_uuid_by_wlan_mac(which), stdout); // the tool's line, its line end included
    return 0;
}

constexpr cli::command kCommands[] = {
    {"info", "", "the product row: IDs, names, logos, UPnP and WPS identity", 0, info},
    {"hw-id", "", "the board's hardware ID as a number", 0, hw_id},
    {"domain", "[2]", "the board's first (or second) domain code", 0, domain},
    {"version", "", "firmware version, its number and build date", 0, version},
    {"language", "N", "supported language N (1 to 20)", 1, language},
    {"notify", "", "1 when all nine firmware notice files are in /var", 0, notify},
    {"mtd", "NAME", "device and size in bytes of the flash partition NAME", 1, mtd},
    {"uuid", "", "the device UUID made from the board MAC", 0, uuid},
    {"wlan-uuid", "[1]", "the UUID uuidgen makes of the board MAC (plus one with 1)", 0, wlan_uuid},
    {"newer", "VERSION", "1 when VERSION is newer than the running firmware", 1, newer},
};

} // namespace

extern const cli::family family_product = {"product", "product identity, firmware version, flash partitions and UUIDs", kCommands};
