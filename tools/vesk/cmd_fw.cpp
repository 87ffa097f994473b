#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_crypt.h"
#include "vesk_fw.h"

namespace {

constexpr size_t kMaxKey = 64;

// The optional last flag of a command ("reboot", "keep"): 0 or 1.
bool flag_arg(int argc, char **argv, int at, int *flag)
{
    *flag = 0;
    return at >= argc || cli::parse_int(argv[at], flag, 0, 1);
}

bool key_arg(const char *key)
{
    if (strlen(key) <= kMaxKey)
        return true;
    cli::refuse("a key has at most %zu characters", kMaxKey);
    return false;
}

bool read_header(const char *path, vesk_fw_header *h)
{
    if (vesk_get_firmware_header_info(path, h))
        return true;
    cli::miss("no image header in %s", path);
    return false;
}

// A header text field, which need not be terminated.
template <size_t N> const char *field(const char (&f)[N], char (&out)[N + 1])
{
    snprintf(out, sizeof out, "%.*s", static_cast<int>(N), f);
    return out;
}

int header(int, char **argv)
{
    vesk_fw_header h;
    if (!read_header(argv[0], &h))
        return cli::kMiss;
    char lead[18], version_id[17], tail[35], md5[33];
    for (size_t i = 0; i < sizeof h.md5_chksum; i++)
        snprintf(md5 + 2 * i, 3, "%02x", h.md5_chksum[i]);
    cli::record()
        .number_u("type", h.type)
        .text("version", vesk_get_firmware_header_version(&h))
        .number_u("version_number", vesk_get_firmware_header_version_dec(&h))
        .number_u("hardware_id", h.hardware_id)
        .text("version_id", field(h.version_id, version_id))
        .text("lead_text", field(h.lead_text, lead))
        .text("tail_text", field(h.tail_text, tail))
        .number_u("length", h.comp_file_len)
        .number_u("sum", h.comp_file_sum)
        .text("md5", md5)
        .number_u("header_sum", h.header_sum)
        .number_u("magic", h.magic_key);
    return cli::kAnswer;
}

int decode(int, char **argv) { return cli::done(vesk_decode_firmware(argv[0]), "the image check"); }
int boot_ver(int, char **) { return cli::answer(vesk_fw_get_boot_ver()); }

int flash(int argc, char **argv)
{
    vesk_fw_header h;
    int reboot;
    if (!flag_arg(argc, argv, 1, &reboot))
        return cli::kUsage;
    if (!read_header(argv[0], &h))
        return cli::kMiss;
    return cli::done(vesk_flash_event_handle(argv[0], &h, reboot), "the image's type");
}

int progress(int, char **argv)
{
    int percent = -1;
    const int r = vesk_firmware_get_upgrade_progress(argv[0], &percent);
    return r > 0 || percent >= 0 ? cli::number(percent) : cli::miss("no progress for %s", argv[0]);
}

int backup(int, char **argv)
{
    if (!key_arg(argv[0]))
        return cli::kUsage;
    vesk_do_backup_config(argv[0]);
    return cli::answer("/tmp/user.conf");
}

int restore(int argc, char **argv)
{
    int reboot;
    return flag_arg(argc, argv, 1, &reboot) ? cli::done(vesk_do_restore_config(argv[0], reboot), "the restore")
                                            : cli::kUsage;
}

template <int (*Crypt)(const char *, const char *, const char *, int)>
int crypt(int argc, char **argv)
{
    int keep;
    if (!key_arg(argv[1]) || !flag_arg(argc, argv, 3, &keep))
        return cli::kUsage;
    return cli::done(Crypt(argv[0], argv[1], argv[2], keep), "lockwrap");
}

constexpr cli::command kCommands[] = {
    {"header", "IMAGE", "the image's 128-byte header, one field a line", 1, header},
    {"decode", "IMAGE", "have the header tool check the image (and cut its header off)", 1, decode},
    {"boot-ver", "", "the boot loader's version", 0, boot_ver},
    {"flash", "IMAGE [REBOOT]", "act on the image by its header's type (kernel, configuration)", 1, flash,
     cli::changes_device},
    {"progress", "IMAGE", "upgrade progress in percent from /var/<name>.stat", 1, progress},
    {"backup", "KEY", "encrypt the store into the image /tmp/user.conf and print its path", 1, backup},
    {"restore", "FILE [REBOOT]", "put a store file in place of /storage/quil.dat (FILE is consumed)", 1, restore,
     cli::changes_device},
    {"encrypt", "IN KEY OUT [KEEP]", "encrypt a file with lockwrap (KEEP 1 keeps IN)", 3, crypt<vesk_crypt_enc_file>},
    {"decrypt", "IN KEY OUT [KEEP]", "decrypt a file with lockwrap (KEEP 1 keeps IN)", 3, crypt<vesk_crypt_dec_file>},
};

} // namespace

extern const cli::family family_fw = {"fw", "firmware images, configuration backup and restore, file encryption",
                                      kCommands};
