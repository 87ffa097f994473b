#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "core/unique.hpp"
#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_disk.h"

namespace {

// A real tmpfs mounted under a disk's device name.
void mount_disk(const char *dev, const char *dir, const char *opts = "size=64k")
{
    std::string cmd = std::string("mkdir -p ") + dir + " && /usr/bin/mount -t tmpfs -o " + opts + " " + dev + " " + dir;
    ASSERT_EQ(vdev::sh(cmd), 0);
}

std::string p(const char *s) { return s ? s : "(null)"; }
using lines = std::vector<std::string>;

TEST(Disk, LooksUpMountsByExactField)
{
    const std::string dev79 = "/dev/" + std::string(74, 'd'), dev80 = "/dev/" + std::string(75, 'e');
    vdev::put("/proc/mounts", "/dev/sdz9 /mnt/first vfat rw 0 0\n/dev/sda10 /mnt/usb10 vfat ro 0 0\n"
                              "/dev/sda1 /mnt/usb1 vfat rw,relatime 0 0\n" +
                                  dev79 + " /mnt/d79 vfat rw 0 0\n" + dev80 + " /mnt/e80 vfat rw 0 0\n" +
                                  "/dev/sdf1 /mnt/" + std::string(300, 'f') + " vfat rw 0 0\n" +
                                  "/dev/sdg1 /mnt/g vfat rw 0 0\n");
    const struct { std::string dev; const char *dir; } by_dev[] = { // dir nullptr: not mounted
        {"/dev/sda1", "/mnt/usb1"}, {"/dev/sdz9", nullptr}, {"/dev/sda", nullptr}, // first line ignored; a prefix
        {dev79, "/mnt/d79"}, {dev80, nullptr}, {"/dev/sdf1", nullptr}, // too long; over-long field
        {"/dev/sdg1", "/mnt/g"}, // after a long line
    };
    for (const auto &c : by_dev)
        EXPECT_EQ(p(vesk_disk_get_mount_point(c.dev.c_str())), p(c.dir)) << c.dev;
    // Two look-ups keep separate buffers; one function reuses its own.
    char *dir = vesk_disk_get_mount_point("/dev/sda1"), *dev = vesk_disk_get_mount_dev("/mnt/usb1");
    EXPECT_EQ(std::string(vesk_disk_get_mount_point("/dev/sdg1")) + dir + dev, "/mnt/g/mnt/g/dev/sda1");

    EXPECT_EQ(stdout_of([] { EXPECT_EQ(vesk_disk_get_mount_point(nullptr), nullptr); }),
              "vesk_disk_get_mount_point: dev_name = NULL!\n");
    vdev::remove("/proc/mounts");
    EXPECT_EQ(p(vesk_disk_get_mount_point("/dev/sda1")) + p(vesk_disk_get_mount_dev("/mnt/usb1")), "(null)(null)");
}

TEST(Disk, FreeSpaceIsLow32BitsOfFreeBlocks)
{
    mount_disk("/dev/sdb1", "/mnt/big", "size=5g");
    EXPECT_EQ(vesk_disk_get_mounted_partition_free_space("/mnt/big"), 1u << 30); // 5 GiB wraps to 1 GiB
    EXPECT_EQ(vesk_disk_get_mounted_partition_free_space("/mnt/nowhere"), 0u);
    EXPECT_EQ(stdout_of([] { EXPECT_EQ(vesk_disk_get_mounted_partition_free_space(nullptr), 0u); }),
              "Error: vesk_disk_get_mounted_partition_free_space input error!\n");
}

TEST(Disk, MountRemakesTheMountPoint)
{
    // Short names and dots inside names are no "." or "..".
    const char *dir = "/mnt/u/.a/b.c/sd";
    vdev::put("/run/vdev/disks", "/dev/sda1 tmpfs size=64k\n");
    vdev::put(dir + std::string("/stale/file"), "old");
    vdev::clear_journal();
    EXPECT_EQ(stdout_of([&] { EXPECT_EQ(vesk_disk_mount("/dev/sda1", dir), 1); }), "!!!!!!!!!!!!\n");
    EXPECT_EQ(vdev::commands(), (lines{"rm -rf /mnt/u/.a/b.c/sd", "mkdir -p  /mnt/u/.a/b.c/sd",
                                       "mount /dev/sda1 /mnt/u/.a/b.c/sd"}));
    EXPECT_STREQ(vesk_disk_get_mount_point("/dev/sda1"), dir);

    // Mounted already: nothing is removed or mounted, wherever it was asked for.
    vdev::clear_journal();
    EXPECT_EQ(stdout_of([] { EXPECT_EQ(vesk_disk_mount("/dev/sda1", "/mnt/usb2"), 1); }),
              "Warning, disk [/dev/sda1] is already mounted!\n");
    EXPECT_EQ(vdev::commands(), lines{});

    // A device that cannot be mounted leaves an empty directory.
    vdev::put("/mnt/usb3/old", "o");
    stdout_of([] { EXPECT_EQ(vesk_disk_mount("/dev/sdq1", "/mnt/usb3"), 0); });
    EXPECT_EQ(vdev::sh("[ -d /mnt/usb3 ] && [ -z \"$(ls -A /mnt/usb3)\" ]"), 0);
}

TEST(Disk, MountRefusesMountPointsItCannotRemoveSafely)
{
    const struct { const char *dev, *dir; } cases[] = {
        {nullptr, "/mnt/x"}, {"/dev/sda1", nullptr}, {"/dev/sda1", "mnt/x"}, {"/dev/sda1", "///"},
        {"/dev/sda1", "/mnt/.."}, {"/dev/sda1", "/./"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(p(c.dev) + " " + p(c.dir));
        EXPECT_EQ(stdout_of([&] { EXPECT_EQ(vesk_disk_mount(c.dev, c.dir), 0); }), "vesk_disk_mount: input error!\n");
    }
    EXPECT_EQ(vdev::commands(), lines{});
}

TEST(Disk, UnmountSucceedsWhenNothingIsLeftMounted)
{
    mount_disk("/dev/sda1", "/mnt/usb1");
    vdev::clear_journal();
    EXPECT_EQ(vesk_disk_unmount("/mnt/usb1"), 1);
    EXPECT_EQ(vdev::commands(), (lines{"sync;sync;sync", "umount -f /mnt/usb1"}));
    mount_disk("/dev/sda1", "/mnt/busy");
    vdev::put("/mnt/busy/open", "x");
    vesk::unique_fd held(open("/mnt/busy/open", O_RDONLY));
    EXPECT_EQ(vesk_disk_unmount("/mnt/busy"), 0);
    EXPECT_EQ(stdout_of([] { EXPECT_EQ(vesk_disk_unmount(nullptr), 0); }), "vesk_disk_unmount: mount_point is NULL!\n");
}

// reported: log line and LED; dst_exists: afterwards
struct copy_case { const char *what; std::string src, dst; const char *mount; int report, result; bool reported, dst_exists; };

TEST(Disk, CopyChecksTheDiskFirst)
{
    // Real disks for free space; the mount table by hand, for the options.
    mount_disk("/dev/sda1", "/mnt/usb1");
    mount_disk("/dev/sdb1", "/mnt/usb2");
    vdev::put("/proc/mounts", "rootfs / rootfs rw 0 0\n/dev/sda1 /mnt/usb1 tmpfs rw,size=64k 0 0\n"
                              "/dev/sdb1 /mnt/usb2 tmpfs rw,ro 0 0\n/dev/sdd1 /mnt/ro tmpfs ro 0 0\n");
    vdev::put("/tmp/small", std::string(1000, 's')), vdev::put("/tmp/big", std::string(65537, 'b'));
    vdev::put("/tmp/exact", std::string(65536, 'e')), vdev::put("/tmp/empty", "");
    vdev::put("/mnt/usb1/old", "an earlier copy"); // a failed copy is removed when reported too
    ASSERT_EQ(vdev::sh("mkdir -p /tmp/dir/sub"), 0);
    ASSERT_EQ(chdir("/tmp"), 0); // a copy to the marker's name would land here, never in the build tree
    const copy_case cases[] = {
        {"empty source", "/tmp/empty", "/mnt/usb1/c", "/mnt/usb1", 1, 0, false, false},
        {"marker after the checks", "/tmp/small", "INDEX_FULL", "/mnt/usb1", 1, 0, false, false},
        {"marker on a full disk", "/tmp/big", "INDEX_FULL", "/mnt/usb1", 1, 0, true, false},
        {"bad source, reported", "/tmp/dir", "/mnt/usb1/old", "/mnt/usb1", 1, 0, true, false},
        {"free space equal to the size; ro not first", "/tmp/exact", "/mnt/usb2/e", "/mnt/usb2", 1, 1, false, true},
        {"read-only", "/tmp/small", "/mnt/ro/a", "/mnt/ro", 1, 0, true, false},
        {"read-only, quiet", "/tmp/small", "/mnt/ro/a", "/mnt/ro", 0, 0, false, false},
    };
    for (const copy_case &c : cases) {
        SCOPED_TRACE(c.what);
        vdev::remove("/var/log/messages");
        vdev::clear_journal();
        EXPECT_EQ(vesk_disk_save_copy_file(c.src.c_str(), c.dst.c_str(), c.mount, c.report), c.result);
        EXPECT_EQ(vdev::read("/var/log/messages").find("Can not copy file to USB disk") != std::string::npos, c.reported);
        auto j = vdev::commands();
        EXPECT_EQ(std::find(j.begin(), j.end(), "led_ctl diag D5") != j.end(), c.reported);
        EXPECT_EQ(vdev::exists(c.dst), c.dst_exists);
    }
    EXPECT_EQ(vdev::read("/mnt/usb2/e"), vdev::read("/tmp/exact")); // the copy is whole
    EXPECT_FALSE(vdev::exists("/tmp/INDEX_FULL"));
    EXPECT_EQ(stdout_of([] { EXPECT_EQ(vesk_disk_save_copy_file(nullptr, "/mnt/usb1/a", "/mnt/usb1", 1), 0); }),
              "vesk_disk_save_copy_file: input error!\n");
}

} // namespace
