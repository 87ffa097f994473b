#include <stdio.h>

#include "cli.hpp"
#include "vesk_disk.h"

namespace {

int free_space(int, char **argv)
{
    printf("%u\n", vesk_disk_get_mounted_partition_free_space(argv[0]));
    return 0;
}

int mount_point(int, char **argv) { return cli::print_text(vesk_disk_get_mount_point(argv[0])); }
int mount_dev(int, char **argv) { return cli::print_text(vesk_disk_get_mount_dev(argv[0])); }
int mount(int, char **argv) { return vesk_disk_mount(argv[0], argv[1]) ? 0 : 1; }
int unmount(int, char **argv) { return vesk_disk_unmount(argv[0]) ? 0 : 1; }

int copy(int argc, char **argv)
{
    int report = 1;
    if (argc > 3 && !cli::parse_int(argv[3], &report)) {
        fprintf(stderr, "vesk disk copy: %s is not a number\n", argv[3]);
        return 2;
    }
    return vesk_disk_save_copy_file(argv[0], argv[1], argv[2], report) ? 0 : 1;
}

constexpr cli::command kCommands[] = {
    {"free", "PATH", "free bytes of the file system holding PATH", 1, free_space},
    {"point", "DEVICE", "where DEVICE is mounted", 1, mount_point},
    {"dev", "MOUNT_POINT", "which device is mounted at MOUNT_POINT", 1, mount_dev},
    {"mount", "DEVICE MOUNT_POINT", "mount DEVICE (MOUNT_POINT is emptied first)", 2, mount},
    {"unmount", "MOUNT_POINT", "unmount MOUNT_POINT", 1, unmount},
    {"copy", "SRC DST MOUNT_POINT [REPORT]", "copy SRC to DST on the disk at MOUNT_POINT, checked (REPORT 0: quiet)",
     3, copy},
};

} // namespace

extern const cli::family family_disk = {"disk", "mounted disks and checked copies", kCommands};
