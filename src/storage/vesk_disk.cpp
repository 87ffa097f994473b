// Disks: mount table look-ups, mount and unmount through the device's tools,
// free space, and the checked copy onto a USB disk.
#include "vesk_disk.h"

#include <stdio.h>
#include <string.h>
#include <sys/statfs.h>

#include "core/command.hpp"
#include "core/line_reader.hpp"
#include "core/unique.hpp"
#include "sysapi.h"

namespace {

constexpr size_t kMountsLine = 256;
constexpr size_t kPathField = 80; // a device or mount point: 79 characters

char mount_point_buffer[kPathField];
char mount_dev_buffer[kPathField];

enum class mount_field { device, mount_point };

// Finds the first line of /proc/mounts, its first line aside, whose field
// `match` equals `wanted`, and returns `result` holding the line's other
// field. Every line that holds `wanted` anywhere leaves its other field in
// `result`. A field too long for an 80-byte buffer is refused rather than
// cut, so that it can never match by its beginning.
char *find_mount(const char *wanted, mount_field match, char (&result)[kPathField])
{
    vesk::unique_file mounts = vesk::open_file("/proc/mounts", "r");
    if (!mounts)
        return nullptr;
    char line[kMountsLine];
    for (int count = 0; vesk::read_line(mounts.get(), line); count++) {
        if (count == 0 || !strstr(line, wanted))
            continue;
        char dev[kMountsLine] = {}, dir[kMountsLine] = {};
        if (sscanf(line, "%255s %255s", dev, dir) != 2 || strlen(dev) >= kPathField || strlen(dir) >= kPathField)
            continue;
        const char *compared = match == mount_field::device ? dev : dir;
        strcpy(result, match == mount_field::device ? dir : dev);
        if (strcmp(compared, wanted) == 0)
            return result;
    }
    return nullptr;
}

// A mount point is removed with "rm -rf" before mounting: it must be an
// absolute path that names something below the root.
bool is_removable_dir(const char *path)
{
    if (path[0] != '/')
        return false;
    bool named = false;
    for (const char *p = path; *p;) {
        while (*p == '/')
            p++;
        const char *end = strchrnul(p, '/');
        size_t len = static_cast<size_t>(end - p);
        if ((len == 1 && p[0] == '.') || (len == 2 && p[0] == '.' && p[1] == '.'))
            return false;
        named |= len > 0;
        p = end;
    }
    return named;
}

void report_copy_failure(int report)
{
    if (!report)
        return;
    system_log(0, "Can not copy file to USB disk");
    vesk::cmd::run(__func__, "led_ctl diag D5");
}

} // namespace

extern "C" {

uint32_t vesk_disk_get_mounted_partition_free_space(const char *path)
{
    if (!path) {
        printf("Error: %s input error!\n", __func__);
        return 0;
    }
    struct statfs st;
    if (statfs(path, &st) != 0)
        return 0; // no room to be had from a path that cannot be examined
    return static_cast<uint32_t>(st.f_bsize) * static_cast<uint32_t>(st.f_bfree);
}

char *vesk_disk_get_mount_point(const char *dev_name)
{
    if (!dev_name) {
        printf("%s: dev_name = NULL!\n", __func__);
        return nullptr;
    }
    return find_mount(dev_name, mount_field::device, mount_point_buffer);
}

char *vesk_disk_get_mount_dev(const char *mount_point)
{
    if (!mount_point) {
        printf("%s: mount_point is NULL!\n", __func__);
        return nullptr;
    }
    return find_mount(mount_point, mount_field::mount_point, mount_dev_buffer);
}

int vesk_disk_mount(const char *dev_name, const char *mount_point)
{
    if (!dev_name || !mount_point || !is_removable_dir(mount_point)) {
        printf("%s: input error!\n", __func__);
        return 0;
    }
    if (vesk_disk_get_mount_point(dev_name)) {
        printf("Warning, disk [%s] is already mounted!\n", dev_name);
        return 1;
    }
    puts("!!!!!!!!!!!!");
    if (vesk::cmd::run(__func__, "rm -rf %s", mount_point) == vesk::cmd::kRefused)
        return 0;
    vesk::cmd::run(__func__, "mkdir -p  %s", mount_point);
    if (vesk::cmd::run(__func__, "mount %s %s", dev_name, mount_point) == vesk::cmd::kRefused)
        return 0;
    return vesk_disk_get_mount_dev(mount_point) ? 1 : 0;
}

int vesk_disk_unmount(const char *mount_point)
{
    if (!mount_point) {
        printf("%s: mount_point is NULL!\n", __func__);
        return 0;
    }
    vesk::cmd::run(__func__, "sync;sync;sync");
    if (vesk::cmd::run(__func__, "umount -f %s", mount_point) == vesk::cmd::kRefused)
        return 0;
    return vesk_disk_get_mount_dev(mount_point) ? 0 : 1;
}

int vesk_disk_save_copy_file(const char *src, const char *dst, const char *mount_point, int report)
{
    if (!src || !dst) {
        printf("%s: input error!\n", __func__);
        return 0;
    }
    const char *dev = vesk_disk_get_mount_dev(mount_point);
    if (!dev)
        return 0;

    // grep matches by substring: the first line that holds the device's
    // name decides, even when it is a longer name's line.
    char out[256] = {};
    if (vesk::cmd::capture(__func__, out, "cat /proc/mounts | grep %s", dev) == -1)
        return 0;
    char options[256] = {};
    if (sscanf(out, "%*s %*s %*s %255s %*d %*d", options) != 1)
        return 0; // the mount went away meanwhile
    char *save = nullptr;
    const char *first = strtok_r(options, ",", &save);
    if (first && strcmp(first, "ro") == 0) {
        report_copy_failure(report);
        return 0;
    }

    unsigned int size = osapi_file_size(src);
    if (size == 0)
        return 0; // an empty or absent source is no disk failure
    if (vesk_disk_get_mounted_partition_free_space(mount_point) < size) {
        report_copy_failure(report);
        return 0;
    }
    if (strcmp(dst, "INDEX_FULL") == 0)
        return 0; // a marker in the place of a file name

    // Any non-zero result is a finished copy; a failing cp prints into out.
    // A refused name made no copy and is no disk failure.
    vesk::unique_heap cp = vesk::cmd::line(__func__, "cp %s %s 2>&1", src, dst);
    if (!cp)
        return 0;
    if (vesk::cmd::capture_line(out, cp) != 0)
        return 1;
    report_copy_failure(report);
    remove(dst);
    return 0;
}

} // extern "C"
