// Readers of the device's own files: resolver lists, firmware images, the
// store, log lists and text files.
#include "fuzz.hpp"
#include "quil.h"
#include "vesk_file.h"
#include "vesk_fw.h"
#include "vesk_if.h"
#include "vesk_logfile.h"
#include "vesk_core.h"

namespace {

VESK_FUZZ_TABLE(
    {"resolv", "/etc/resolv.conf",
     [](const char *, size_t) {
         vesk_if_get_dns();
         vesk_if_get_dns_full(2, "search");
         __vesk_if_get_dns_full("/etc/resolv.conf", 0, nullptr, 1);
     }},
    {"fw_header", "/tmp/fuzz.img",
     [](const char *, size_t) {
         vesk_fw_header header;
         if (vesk_get_firmware_header_info("/tmp/fuzz.img", &header) == 1) {
             vesk_get_firmware_header_version(&header);
             vesk_get_firmware_header_version_dec(&header);
         }
     },
     true},
    {"store", QUIL_DAT_FILE,
     [](const char *, size_t) {
         unsigned char rec[128];
         quil_get_value(rec, "admin_cfg");
         quil_get_value(rec, "wl%dbasic", 1);
         vesk_util_get_sch_en();
         int v = 1;
         quil_set_value(&v, "radio_opmode_0");
         quil_save_new_file_by_token("wl");
     }},
    {"logfile_list", "tool:grep",
     [](const char *, size_t) {
         char tag[256], date[256];
         int number;
         vesk_logfile_get_last_record_date_and_number("/var/log", "sys", "log", tag, date, &number, "txt");
     }},
    {"text_file", "/tmp/fuzz.txt", [](const char *, size_t) { vesk_file_text_truncate("/tmp/fuzz.txt", nullptr, 4, 2); }},
    );

} // namespace
