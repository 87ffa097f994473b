// Parsers of the device tools' output: the tool prints the input.
#include <stdio.h>
#include <unistd.h>

#include "fuzz.hpp"
#include "vesk_br.h"
#include "vesk_fw.h"
#include "vesk_mtd.h"
#include "vesk_product.h"
#include "vesk_wan.h"

namespace {

VESK_FUZZ_TABLE(
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
