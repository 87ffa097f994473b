// Backing up the store's file into an encrypted image, and restoring a
// configuration file in its place (and on the USB disk in USB-boot
// operation).
#include "vesk_fw.h"

#include <stdio.h>

#include "core/command.hpp"
#include "core/unique.hpp"
#include "quil.h"
#include "sysapi.h"
#include "vesk_core.h"
#include "vesk_crypt.h"
#include "vesk_disk.h"
#include "vesk_product.h"
#include "vesk_string.h"

namespace {

constexpr char kPrefixList[] = "/storage/prefix_list";
constexpr char kUsbMount[] = "/mnt/usb1";
constexpr char kUsbDat[] = ".quil.dat";
constexpr char kUsbNewDat[] = ".quil_new.dat";
constexpr char kBackupPlain[] = "/tmp/ap_cfg";
constexpr char kBackupImage[] = "/tmp/user.conf";

// Hands the store each token of the prefix list, then deletes the list. A
// line longer than 29 characters arrives as several tokens.
void apply_prefix_list()
{
    remove(QUIL_NEW_DAT_FILE);
    vesk::unique_file list = vesk::open_file(kPrefixList, "r");
    if (!list) {
        T_PRINTF("open [%s] error\n", kPrefixList);
        return;
    }
    char line[30];
    while (fgets(line, sizeof line, list.get())) {
        vesk_remove_crlf(line);
        T_PRINTF("buf [%s]\n", line);
        quil_save_new_file_by_token(line);
    }
    list.reset();
    remove(kPrefixList);
}

void copy_to_usb(const char *path, const char *name)
{
    char dst[64] = {};
    snprintf(dst, sizeof dst, "%s/%s", kUsbMount, name);
    vesk_disk_save_copy_file(path, dst, kUsbMount, 1);
}

} // namespace

extern "C" {

char reset_default_prefix_list[480];

int vesk_do_restore_config(const char *path, int reboot)
{
    if (!path) {
        T_PRINTF("%s: path is NULL!\n", __func__);
        return 1;
    }
    // A name the shell cannot be given safely stops the restore before
    // anything changes.
    vesk::unique_heap copy = vesk::cmd::line(__func__, "cp %s %s", path, QUIL_DAT_FILE);
    if (!copy)
        return 1;
    quil_update_dat_file();
    if (osapi_is_file_existed(kPrefixList))
        apply_prefix_list();
    vesk::cmd::run_line(copy);
    if (vesk_get_usboot()) {
        vesk::cmd::run(__func__, "rm %s/%s", kUsbMount, kUsbNewDat);
        // Both copies on the disk hold the restored file.
        copy_to_usb(path, kUsbDat);
        copy_to_usb(path, kUsbNewDat);
    }
    vesk::cmd::run(__func__, "rm -rf %s", path);
    if (reboot)
        vesk::cmd::run(__func__, "sd_ctrl inform reboot");
    return 1;
}

int vesk_do_backup_config(const char *key)
{
    quil_update_dat_file();
    // A refused key leaves no plain file; the header tool then fails alone.
    vesk_crypt_enc_file(QUIL_DAT_FILE, key, kBackupPlain, 1);
    vesk::cmd::run(__func__, "header -s %s -d %s -a -t %s -c %s", kBackupPlain, kBackupImage, "userconfig",
                   vesk_product_get_fw_version());
    remove(kBackupPlain);
    return 1;
}

} // extern "C"
