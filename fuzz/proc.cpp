// The /proc readers: the input is the kernel's file.
#include "fuzz.hpp"
#include "vesk_arp.h"
#include "vesk_disk.h"
#include "vesk_if.h"
#include "vesk_mtd.h"
#include "vesk_stat.h"
#include "vesk_time.h"

namespace {

VESK_FUZZ_TABLE(
    {"route", "/proc/net/route",
     [](const char *, size_t) {
         vesk_if_get_gateway("br0");
         vesk_if_get_default_gateway();
     }},
    {"dev", "/proc/net/dev",
     [](const char *, size_t) {
         vesk_if_stats stats;
         vesk_if_get_stats("br0", &stats);
         vesk_if_get_stats("eth0.2", &stats);
     }},
    {"arp", "/proc/net/arp",
     [](const char *, size_t) {
         vesk_arp_get_ifname_by_ip("192.0.2.1");
         vesk_arp_get_macstr_by_ip("192.0.2.1", 0);
         vesk_arp_get_ip_by_macstr("00aa11bb22cc");
     }},
    {"mtd", "/proc/mtd",
     [](const char *, size_t) {
         int index, size;
         vesk_get_mtd_by_name("Kernel", &index, &size);
         vesk_get_mtd_by_name("", &index, &size);
     }},
    {"mounts", "/proc/mounts",
     [](const char *, size_t) {
         vesk_disk_get_mount_point("/dev/sda1");
         vesk_disk_get_mount_dev("/mnt/usb");
     }},
    {"meminfo", "/proc/meminfo",
     [](const char *, size_t) {
         vesk_stat_mem mem;
         vesk_stat_meminfo(&mem);
     }},
    {"stat", "/proc/stat",
     [](const char *, size_t) {
         vesk_stat_cpu cpu;
         vesk_stat_cpuloading(&cpu);
     }},
    {"interrupts", "/proc/interrupts",
     [](const char *, size_t) {
         unsigned int count;
         vesk_stat_interrupts("eth0", &count);
     }},
    {"uptime", "/proc/uptime", [](const char *, size_t) { vesk_get_x_time(); }}, );

} // namespace
