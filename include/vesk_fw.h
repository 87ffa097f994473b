/* Firmware images and configuration backups: the 128-byte image header,
 * writing an image to flash, and backing up and restoring the store's file. */
#ifndef VESK_FW_H
#define VESK_FW_H

#include <stdint.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* The image header as it lies at offset 0 of every image, 128 bytes with no
 * gaps, so the words sit at unaligned offsets: the compiler reads them
 * bytewise. After vesk_get_firmware_header_info the words are in host order. */
#if defined(__GNUC__)
#define VESK_PACKED __attribute__((packed))
#else
#define VESK_PACKED
#endif
typedef struct VESK_PACKED vesk_fw_header {
    uint32_t lead_word;
    uint32_t type;             /* image type: 1, 3, 11, 7 or 13 */
    char lead_text[17];
    char code_version[17];     /* "%u.%u.%u" */
    uint32_t hardware_id;      /* vendor id << 16 | product id */
    char version_id[16];
    uint32_t comp_file_len;
    uint32_t comp_file_sum;
    unsigned char md5_chksum[16];
    char tail_text[34];
    uint32_t header_sum;
    uint32_t magic_key;
} vesk_fw_header;

/* Reads the first 128 bytes of the image at path into header. Returns 1 when
 * the record was filled; 0 (with a message, but for null arguments) when the
 * file is absent, shorter than 128 bytes, cannot be opened for "r+b" or read.
 * No field is judged. */
VESK_API int vesk_get_firmware_header_info(const char *path, vesk_fw_header *header);

/* Prints the header's fields, the type's name and the digest. Null: nothing. */
VESK_API void vesk_print_firmware_header_info(const vesk_fw_header *header);

/* code_version as text in a static 128-byte buffer that the next call
 * overwrites. */
VESK_API char *vesk_get_firmware_header_version(const vesk_fw_header *header);

/* code_version as major * 10000 + minor * 100 + patch; missing numbers
 * count as 0 ("1.2" is 10200). */
VESK_API unsigned int vesk_get_firmware_header_version_dec(const vesk_fw_header *header);

/* Has "header -x" check the image at path. Returns 1 when the tool's output
 * holds "header: Return OK", else 0. */
VESK_API int vesk_decode_firmware(const char *path);

/* The boot loader's version: the first line of /tmp/uboot_ver (line end
 * kept), else "board_config get bver" without its line end, else "---".
 * Static 128-byte buffer. */
VESK_API char *vesk_fw_get_boot_ver(void);

/* Acts on an image by its header's type: a kernel (3) is written to the
 * flash partition "Kernel" and becomes the board's kver, a configuration
 * (7) is restored, boot loader, factory apps and language pack (1, 11, 13)
 * need nothing. Returns 1 for a known type; 0 for null arguments or an
 * unknown type (with a message). reboot non-zero reboots at the end. */
VESK_API int vesk_flash_event_handle(const char *path, const vesk_fw_header *header, int reboot);

/* Writes the image at path with flashcp to the partition named by the type
 * at type_index (0-4), records version as kver, reboots when asked. Blocks
 * 3 seconds plus the write. Returns 1. */
VESK_API int vesk_do_image_upgrade(const char *path, int type_index, int reboot, const char *version);

/* Upgrade progress from /var/<last component of name>.stat (name loses its
 * trailing slashes). Returns 0 when there is no such file; otherwise the
 * number in it (-1 when it holds none), stored in *percent when 0 or more.
 * -1 with a message for a null name. */
VESK_API int vesk_firmware_get_upgrade_progress(char *name, int *percent);

/* Puts the configuration file at path in place of /storage/quil.dat, after
 * handing the store the tokens of /storage/prefix_list (then deleted); in
 * USB-boot operation copies it to the USB disk too. path is deleted.
 * reboot non-zero reboots at the end. Returns 1. */
VESK_API int vesk_do_restore_config(const char *path, int reboot);

/* Encrypts /storage/quil.dat with key (0 to 64 characters, not null) and
 * wraps it into a "userconfig" image of the firmware's version at
 * /tmp/user.conf. Returns 1. */
VESK_API int vesk_do_backup_config(const char *key);

/* 480 bytes for the firmware's programs, zero at load; the library does
 * not use it. */
VESK_API extern char reset_default_prefix_list[480];

VESK_END_DECLS

#endif
