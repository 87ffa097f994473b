#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_mtd.h"
#include "vesk_product.h"

namespace {

// What the library answers when the board's tools fail: UUIDs of the
// fallback MAC 00:AA:BB:CC:DD:10.
constexpr const char kFallbackMac[] = "00aabbccdd10";

int info(int, char **)
{
    static constexpr struct {
        const char *name;
        const char *(*get)(void);
    } kTexts[] = {
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
    cli::record r;
    r.number_u("row", vesk_product_get_index())
        .number_u("fw_upg_product_id", vesk_product_get_fw_upg_product_id())
        .number_u("fw_upg_vendor_id", vesk_product_get_fw_upg_vendor_id());
    for (const auto &t : kTexts)
        r.text(t.name, t.get());
    return cli::kAnswer;
}

int hw_id(int, char **)
{
    const unsigned int id = vesk_product_get_board_hw_id_hex();
    char hex[11];
    snprintf(hex, sizeof hex, "0x%08X", id);
    return id ? cli::text(hex) : cli::miss("the board tool gave no hardware ID");
}

int domain(int argc, char **argv)
{
    static const char *const kWhich[] = {"1", "2", nullptr};
    int which = 0;
    if (argc > 0 && !cli::parse_choice(argv[0], kWhich, &which))
        return cli::kUsage;
    return cli::number(vesk_product_get_board_domain(which));
}

int version(int, char **)
{
    cli::record()
        .text("version", vesk_product_get_fw_version())
        .number_u("number", vesk_product_get_fw_version_dec())
        .text("build_date", vesk_product_get_fw_build_date());
    return cli::kAnswer;
}

int language(int, char **argv)
{
    int n;
    return cli::parse_int(argv[0], &n, 1, VESK_PRODUCT_LANGUAGES) ? cli::answer(vesk_product_get_support_language(n))
                                                                  : cli::kUsage;
}

int notify(int, char **) { return cli::number(vesk_product_check_fw_notify()); }

int newer(int, char **argv)
{
    unsigned int major, minor, patch;
    char end;
    const int n = sscanf(argv[0], "%u.%u.%u%c", &major, &minor, &patch, &end);
    if ((n != 2 && n != 3) || strspn(argv[0], "0123456789.") != strlen(argv[0]))
        return cli::refuse("%s is not a version MAJOR.MINOR[.PATCH]", argv[0]);
    return cli::number(vesk_product_check_new_fw_by_str(argv[0]));
}

int mtd(int, char **argv)
{
    int index, size = 0;
    if (vesk_get_mtd_by_name(argv[0], &index, &size) < 0)
        return cli::miss("no flash partition %s", argv[0]);
    char device[32];
    snprintf(device, sizeof device, "/dev/mtd%d", index);
    cli::record().text("device", device).number("size", size);
    return cli::kAnswer;
}

int uuid_answer(char *uuid)
{
    uuid[strcspn(uuid, "\n")] = '\0';
    const size_t len = strlen(uuid);
    if (len >= sizeof kFallbackMac - 1 && !strcmp(uuid + len - (sizeof kFallbackMac - 1), kFallbackMac))
        return cli::miss("the board's tools failed (%s)", uuid);
    return cli::answer(uuid);
}

int uuid(int, char **) { return uuid_answer(vesk_get_uuid()); }

int wlan_uuid(int argc, char **argv)
{
    static const char *const kWhich[] = {"0", "1", nullptr};
    int which = 0;
    if (argc > 0 && !cli::parse_choice(argv[0], kWhich, &which))
        return cli::kUsage;
    return uuid_answer(vesk_get_uuid_by_wlan_mac(which));
}

constexpr cli::command kCommands[] = {
    {"info", "", "the product row: IDs, names, logos, UPnP and WPS identity", 0, info},
    {"hw-id", "", "the board's hardware ID as a number", 0, hw_id},
    {"domain", "[1|2]", "the board's first (or second) domain code", 0, domain},
    {"version", "", "firmware version, its number and build date", 0, version},
    {"language", "N", "supported language N (1 to 20)", 1, language},
    {"notify", "", "1 when all nine firmware notice files are in /var, else 0", 0, notify},
    {"mtd", "NAME", "device and size in bytes of the flash partition NAME", 1, mtd},
    {"uuid", "", "the device UUID made from the board MAC", 0, uuid},
    {"wlan-uuid", "[0|1]", "the UUID uuidgen makes of the board MAC (plus one with 1)", 0, wlan_uuid},
    {"newer", "VERSION", "1 when VERSION is newer than the running firmware, else 0", 1, newer},
};

} // namespace

extern const cli::family family_product = {"product", "product identity, firmware version, flash partitions and UUIDs", kCommands};
