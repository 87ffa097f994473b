/* Removable disks: what is mounted where (from /proc/mounts), mounting and
 * unmounting through the device's mount and umount, free space, and a
 * checked copy of a file onto a mounted disk. Messages of this family go to
 * standard output. */
#ifndef VESK_DISK_H
#define VESK_DISK_H

#include <stdint.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Free bytes (block size times free blocks, reserved ones included) of the
 * file system that holds path, cut to the low 32 bits. 0 when path is null
 * (with a message) or cannot be examined. */
VESK_API uint32_t vesk_disk_get_mounted_partition_free_space(const char *path);

/* Where the device dev_name (exactly that name) is mounted: a static
 * 80-byte buffer holding the mount point, or null when it is not mounted,
 * when /proc/mounts cannot be read, or with a message when dev_name is null.
 * The buffer is overwritten by the next call. */
VESK_API char *vesk_disk_get_mount_point(const char *dev_name);

/* Which device is mounted at mount_point (exactly that path): a static
 * 80-byte buffer holding the device, or null when nothing is mounted there
 * or /proc/mounts cannot be read. The buffer is overwritten by the next
 * call. */
VESK_API char *vesk_disk_get_mount_dev(const char *mount_point);

/* Mounts dev_name at mount_point, which is first removed with all it holds
 * and made anew. A device that is mounted already (anywhere) is left alone
 * with a warning. Returns 1 when the device is mounted afterwards, else 0;
 * 0 with a message for a null or unsafe argument (a mount point that is not
 * an absolute path below the root, or text with blanks or shell
 * characters). */
VESK_API int vesk_disk_mount(const char *dev_name, const char *mount_point);

/* Syncs and force-unmounts mount_point. Returns 1 when nothing is mounted
 * there afterwards, else 0; 0 with a message for a null or unsafe
 * argument. */
VESK_API int vesk_disk_unmount(const char *mount_point);

/* Copies src to dst on the disk mounted at mount_point, after checking that
 * the disk is mounted, not read-only and has room for src. Returns 1 when
 * the copy was made, else 0. With report non-zero, a read-only or full disk
 * and a failed copy are logged ("Can not copy file to USB disk") and shown
 * on the LED. A failed copy is removed. dst "INDEX_FULL" makes no copy. */
VESK_API int vesk_disk_save_copy_file(const char *src, const char *dst, const char *mount_point, int report);

VESK_END_DECLS

#endif
