// Readers of the device's own files (resolver lists, firmware images, the
// store, text files) and of its tools' output: the tool prints the input.
#include <stdio.h>
#include <unistd.h>

#include "fuzz.hpp"
#include "quil.h"
#include "vesk_br.h"
#include "vesk_file.h"
#include "vesk_fw.h"
#include "vesk_if.h"
#include "vesk_logfile.h"
#include "vesk_core.h"
#include "vesk_product.h"
#include "vesk_wan.h"

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
    {"board_config", "tool:board_config",
     [](const char *, size_t) {
         vesk_product_get_board_domain(0);
         vesk_product_get_board_hw_id_hex();
         vesk_fw_get_boot_ver();
     }},
    {"netstat", "tool:netstat",
     [](const char *, size_t) {
         if (FILE *pid = fopen("/var/run/fuzz.pid", "w")) // the daemon is the fuzzer itself
             fclose((fprintf(pid, "%d\n", getpid()), pid));
         vesk_wan_get_ppp_status("fuzz", "ppp0");
     }},
    {"bridge", "tool:bridge", [](const char *, size_t) { vesk_del_br_fdb("00:aa:11:bb:22:cc"); }}, );

} // namespace
