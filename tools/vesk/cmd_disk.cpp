#include "cli.hpp"
#include "vesk_disk.h"

namespace {

int free_space(int, char **argv)
{
    const unsigned int bytes = vesk_disk_get_mounted_partition_free_space(argv[0]);
    return bytes ? cli::number_u(bytes) : cli::miss("no free space on %s, or it cannot be examined", argv[0]);
}

int mount_point(int, char **argv) { return cli::answer(vesk_disk_get_mount_point(argv[0])); }
int mount_dev(int, char **argv) { return cli::answer(vesk_disk_get_mount_dev(argv[0])); }
int mount(int, char **argv) { return cli::done(vesk_disk_mount(argv[0], argv[1]), "mounting"); }
int unmount(int, char **argv) { return cli::done(vesk_disk_unmount(argv[0]), "unmounting"); }

int copy(int argc, char **argv)
{
    int report = 1;
    if (argc > 3 && !cli::parse_int(argv[3], &report, 0, 1))
        return cli::kUsage;
    return cli::done(vesk_disk_save_copy_file(argv[0], argv[1], argv[2], report), "the copy");
}

constexpr cli::command kCommands[] = {
    {"free", "PATH", "free bytes of the file system holding PATH", 1, free_space},
    {"point", "DEVICE", "where DEVICE is mounted", 1, mount_point},
    {"dev", "MOUNT_POINT", "which device is mounted at MOUNT_POINT", 1, mount_dev},
    {"mount", "DEVICE MOUNT_POINT", "mount DEVICE (MOUNT_POINT is emptied first)", 2, mount, cli::changes_device},
    {"unmount", "MOUNT_POINT", "unmount MOUNT_POINT", 1, unmount, cli::changes_device},
    {"copy", "SRC DST MOUNT_POINT [REPORT]", "copy SRC to DST on the disk at MOUNT_POINT, checked (REPORT 0: quiet)",
     3, copy, cli::changes_device},
};

} // namespace

extern const cli::family family_disk = {"disk", "mounted disks and checked copies", kCommands};
