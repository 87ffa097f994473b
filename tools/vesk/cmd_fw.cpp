#include <stdio.h>

#include "cli.hpp"
#include "vesk_crypt.h"
#include "vesk_fw.h"

namespace {

// The optional last flag of a command ("reboot", "keep"): 1 when given as 1.
int optional_flag(int argc, char **argv, int at)
{
    int v = 0;
    return at < argc && cli::parse_int(argv[at], &v) && v ? 1 : 0;
}

bool read_header(const char *path, vesk_fw_header *h)
{
    if (vesk_get_firmware_header_info(path, h))
        return true;
    fprintf(stderr, "vesk fw: no image header in %s\n", path);
    return false;
}

int header(int, char **argv)
{
    vesk_fw_header h;
    if (!read_header(argv[0], &h))
        return 1;
    vesk_print_firmware_header_info(&h);
    printf("type %u version %s (%u)\n", static_cast<unsigned>(h.type), vesk_get_firmware_header_version(&h),
           vesk_get_firmware_header_version_dec(&h));
    return 0;
}

int decode(int, char **argv) { return vesk_decode_firmware(argv[0]) ? 0 : 1; }

int boot_ver(int, char **) { return cli::print_text(vesk_fw_get_boot_ver()); }

int flash(int argc, char **argv)
{
    vesk_fw_header h;
    if (!read_header(argv[0], &h))
        return 1;
    return vesk_flash_event_handle(argv[0], &h, optional_flag(argc, argv, 1)) ? 0 : 1;
}

int progress(int, char **argv)
{
    int percent = -1;
    int r = vesk_firmware_get_upgrade_progress(argv[0], &percent);
    printf("%d\n", r);
    return r < 0 ? 1 : 0;
}

int backup(int, char **argv)
{
    vesk_do_backup_config(argv[0]);
    printf("/tmp/user.conf\n");
    return 0;
}

int restore(int argc, char **argv) { return vesk_do_restore_config(argv[0], optional_flag(argc, argv, 1)) ? 0 : 1; }

int encrypt(int argc, char **argv) { return vesk_crypt_enc_file(argv[0], argv[1], argv[2], optional_flag(argc, argv, 3)) ? 0 : 1; }
int decrypt(int argc, char **argv) { return vesk_crypt_dec_file(argv[0], argv[1], argv[2], optional_flag(argc, argv, 3)) ? 0 : 1; }

constexpr cli::command kCommands[] = {
    {"header", "IMAGE", "print the image's 128-byte header", 1, header},
    {"decode", "IMAGE", "have the header tool check the image (and cut its header off)", 1, decode},
    {"boot-ver", "", "the boot loader's version", 0, boot_ver},
    {"flash", "IMAGE [REBOOT]", "act on the image by its header's type (kernel, configuration)", 1, flash},
    {"progress", "IMAGE", "upgrade progress from /var/<name>.stat (0: none)", 1, progress},
    {"backup", "KEY", "encrypt the store into the image /tmp/user.conf", 1, backup},
    {"restore", "FILE [REBOOT]", "put a store file in place (FILE is consumed)", 1, restore},
    {"encrypt", "IN KEY OUT [KEEP]", "encrypt a file with lockwrap (KEEP 1 keeps IN)", 3, encrypt},
    {"decrypt", "IN KEY OUT [KEEP]", "decrypt a file with lockwrap (KEEP 1 keeps IN)", 3, decrypt},
};

} // namespace

extern const cli::family family_fw = {"fw", "firmware images, configuration backup and restore, file encryption",
                                      kCommands};
