// Acting on a received image by its type: writing a kernel to flash or
// restoring a configuration; and the progress of an upgrade.
#include "vesk_fw.h"

#include <stdio.h>
#include <unistd.h>

#include "core/command.hpp"
#include "core/unique.hpp"
#include "firmware/fw_types.hpp"
#include "sysapi.h"
#include "vesk_core.h"
#include "vesk_mtd.h"
#include "vesk_string.h"

using vesk::fw::fw_type_table;

extern "C" {

int vesk_flash_event_handle(const char *path, const vesk_fw_header *header, int reboot)
{
    if (!path || !header)
        return 0;
    uint32_t type = header->type;
    if (vesk::fw::fw_type_index(type) < 0) {
        T_PRINTF("Err: %s wrong type: %d\n", __func__, static_cast<int>(type));
        return 0;
    }
    vesk_led_fw_upgrade(1);
    if (type == vesk::fw::kTypeKernel)
        vesk_do_image_upgrade(path, vesk::fw::fw_type_index(type), reboot, vesk_get_firmware_header_version(header));
    else if (type == vesk::fw::kTypeUserConfig)
        vesk_do_restore_config(path, reboot);
    // Boot loader, factory apps and language pack: nothing to do here.
    vesk_led_fw_upgrade(0);
    return 1;
}

int vesk_do_image_upgrade(const char *path, int type_index, int reboot, const char *version)
{
    if (!path) {
        T_PRINTF("%s: path is NULL!\n", __func__);
        return 1;
    }
    int mtd = -1, size = 0;
    // An index outside the table names no partition: the write then goes to
    // "/dev/mtd-1" and fails, as for a board without the partition.
    bool known = type_index >= 0 && static_cast<size_t>(type_index) < fw_type_table.size();
    if (known)
        vesk_get_mtd_by_name(fw_type_table[static_cast<size_t>(type_index)].name, &mtd, &size);
    // The image's path and the header's version come from an upload: a
    // refused word stops the upgrade before anything is written.
    vesk::unique_heap flash = vesk::cmd::line(__func__, "flashcp -v %s /dev/mtd%d", path, mtd);
    vesk::unique_heap kver;
    if (!flash || (version && !(kver = vesk::cmd::line(__func__, "board_config set kver %s", version))))
        return 1;
    sleep(2);
    vesk::cmd::run_line(flash);
    sleep(1);
    if (kver)
        vesk::cmd::run_line(kver);
    if (reboot)
        vesk::cmd::run(__func__, "sd_ctrl inform reboot");
    return 1;
}

int vesk_firmware_get_upgrade_progress(char *name, int *percent)
{
    if (!name) {
        T_PRINTF("%s: input error!\n", __func__);
        return -1;
    }
    char path[136];
    int len = snprintf(path, sizeof path, "/var/%s.stat", vesk_string_get_last_path_component_strip(name));
    // A cut path would name another file: refuse it as bad input.
    if (len < 0 || static_cast<size_t>(len) >= sizeof path) {
        T_PRINTF("%s: input error!\n", __func__);
        return -1;
    }
    if (!osapi_is_file_existed(path))
        return 0;
    int number = -1;
    if (vesk::unique_file f = vesk::open_file(path, "r")) {
        if (fscanf(f.get(), "%d\n", &number) != 1)
            number = -1;
    }
    if (number >= 0 && percent)
        *percent = number;
    return number;
}

} // extern "C"
