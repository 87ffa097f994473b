// The 128-byte image header: reading it from a file, printing it, its
// version, having the header tool check an image, and the boot loader's
// version.
#include "core/placeholders.hpp"
#include "vesk_fw.h"

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <string_view>

#include "core/command.hpp"
#include "core/unique.hpp"
#include "core/version.hpp"
#include "firmware/fw_types.hpp"
#include "sysapi.h"
#include "vesk_string.h"

namespace {

using vesk::fw::fw_type_table;

constexpr size_t kHeaderSize = 128;

static_assert(sizeof(vesk_fw_header) == kHeaderSize);
static_assert(offsetof(vesk_fw_header, lead_word) == 0);
static_assert(offsetof(vesk_fw_header, type) == 4);
static_assert(offsetof(vesk_fw_header, lead_text) == 8);
static_assert(offsetof(vesk_fw_header, code_version) == 25);
static_assert(offsetof(vesk_fw_header, hardware_id) == 42);
static_assert(offsetof(vesk_fw_header, version_id) == 46);
static_assert(offsetof(vesk_fw_header, comp_file_len) == 62);
static_assert(offsetof(vesk_fw_header, comp_file_sum) == 66);
static_assert(offsetof(vesk_fw_header, md5_chksum) == 70);
static_assert(offsetof(vesk_fw_header, tail_text) == 86);
static_assert(offsetof(vesk_fw_header, header_sum) == 120);
static_assert(offsetof(vesk_fw_header, magic_key) == 124);

char header_version_buffer[128];
char boot_version_buffer[128];

uint32_t load_be32(const unsigned char *p)
{
    return uint32_t{p[0]} << 24 | uint32_t{p[1]} << 16 | uint32_t{p[2]} << 8 | uint32_t{p[3]};
}

// The record's words are unaligned: store through memcpy, never a uint32_t*.
void put_word(vesk_fw_header *h, size_t offset, const unsigned char *raw)
{
    uint32_t v = load_be32(raw + offset);
    memcpy(reinterpret_cast<unsigned char *>(h) + offset, &v, sizeof v);
}

uint32_t get_word(const vesk_fw_header *h, size_t offset)
{
    uint32_t v;
    memcpy(&v, reinterpret_cast<const unsigned char *>(h) + offset, sizeof v);
    return v;
}

// Copies a text field up to its terminator, within its width; the rest of
// the field is zeroed.
void put_text(vesk_fw_header *h, size_t offset, size_t width, const unsigned char *raw)
{
    char *dst = reinterpret_cast<char *>(h) + offset;
    const char *src = reinterpret_cast<const char *>(raw) + offset;
    size_t len = strnlen(src, width);
    memset(dst, 0, width);
    memcpy(dst, src, len);
}

// A text field as a view that stops at its terminator or its width, so a
// field without a terminator is never read past.
std::string_view field_text(const char *field, size_t width) { return {field, strnlen(field, width)}; }

#define FIELD_TEXT(h, f) field_text((h)->f, sizeof((h)->f))

} // namespace

extern "C" {

int vesk_get_firmware_header_info(const char *path, vesk_fw_header *header)
{
    if (!path || !header)
        return 0;
    if (!osapi_is_file_existed(path)) {
        T_PRINTF("Err: %s: %s does not exist!\n", __func__, path);
        return 0;
    }
    if (osapi_file_size(path) < kHeaderSize) {
        T_PRINTF("Err: %s: %s file size is too small!\n", __func__, path);
        return 0;
    }
    // "r+b": a file the caller may not write counts as unreadable here.
    vesk::unique_file f = vesk::open_file(path, "r+b");
    if (!f) {
        T_PRINTF("%s: Cannot open %s !!\n", __func__, path);
        return 0;
    }
    unsigned char raw[kHeaderSize];
    if (fread(raw, 1, sizeof raw, f.get()) != sizeof raw) {
        T_PRINTF("%s: Cannot read header %s !!\n", __func__, path);
        return 0;
    }
    f.reset();

    for (size_t off : {offsetof(vesk_fw_header, lead_word), offsetof(vesk_fw_header, type),
                       offsetof(vesk_fw_header, hardware_id), offsetof(vesk_fw_header, comp_file_len),
                       offsetof(vesk_fw_header, comp_file_sum), offsetof(vesk_fw_header, header_sum),
                       offsetof(vesk_fw_header, magic_key)})
        put_word(header, off, raw);
    put_text(header, offsetof(vesk_fw_header, lead_text), sizeof header->lead_text, raw);
    put_text(header, offsetof(vesk_fw_header, code_version), sizeof header->code_version, raw);
    put_text(header, offsetof(vesk_fw_header, version_id), sizeof header->version_id, raw);
    put_text(header, offsetof(vesk_fw_header, tail_text), sizeof header->tail_text, raw);
    memcpy(header->md5_chksum, raw + offsetof(vesk_fw_header, md5_chksum), sizeof header->md5_chksum);
    return 1;
}

void vesk_print_firmware_header_info(const vesk_fw_header *header)
{
    if (!header)
        return;
    uint32_t hw = get_word(header, offsetof(vesk_fw_header, hardware_id));
    uint32_t type = get_word(header, offsetof(vesk_fw_header, type));
    std::string_view version_id = FIELD_TEXT(header, version_id);
    std::string_view code_version = FIELD_TEXT(header, code_version);

    T_PRINTF("------- Header Info -------\n");
    T_PRINTF("Vendor  id:  0x%04x\n", hw >> 16);
    T_PRINTF("Product id:  0x%04x\n", hw & 0xFFFF);
    T_PRINTF("Hardware id:  0x%08x\n", hw);
    T_PRINTF("Version id:  %.*s\n", static_cast<int>(version_id.size()), version_id.data());
    T_PRINTF("Code Version:  %.*s\n", static_cast<int>(code_version.size()), code_version.data());
    // An unknown type prints no name and no line end: the next line follows on.
    T_PRINTF("Type: 0x%x ", type);
    for (const auto &t : fw_type_table)
        if (t.type == type)
            T_PRINTF("[%s]\n", t.name);
    T_PRINTF("comp_file_len:  %d\n", static_cast<int32_t>(get_word(header, offsetof(vesk_fw_header, comp_file_len))));
    T_PRINTF("comp_file_sum:  0x%x\n", get_word(header, offsetof(vesk_fw_header, comp_file_sum)));
    T_PRINTF("Header sum:  0x%x\n", get_word(header, offsetof(vesk_fw_header, header_sum)));
    T_PRINTF("Magic key:  0x%x\n", get_word(header, offsetof(vesk_fw_header, magic_key)));
    T_PRINTF("MD5 chksum:  ");
    for (unsigned char b : header->md5_chksum)
        T_PRINTF("%x", b);
    T_PRINTF("\n");
    T_PRINTF("------------------------------\n");
}

char *vesk_get_firmware_header_version(const vesk_fw_header *header)
{
    if (!header) {
        header_version_buffer[0] = '\0';
        return header_version_buffer;
    }
    std::string_view v = FIELD_TEXT(header, code_version);
    memcpy(header_version_buffer, v.data(), v.size());
    header_version_buffer[v.size()] = '\0';
    return header_version_buffer;
}

unsigned int vesk_get_firmware_header_version_dec(const vesk_fw_header *header)
{
    if (!header)
        return 0;
    char text[sizeof header->code_version + 1] = {};
    std::string_view v = FIELD_TEXT(header, code_version);
    memcpy(text, v.data(), v.size());
    // Numbers the text does not hold count as 0, the first two as well.
    return vesk::version_number(text);
}

int vesk_decode_firmware(const char *path)
{
    char buf[1024] = {};
    if (!path) {
        T_PRINTF("%s: path is NULL!\n", __func__);
        return 0;
    }
    if (vesk::cmd::capture(__func__, buf, "header -x %s", path) == vesk::cmd::kRefused)
        return 0;
    T_PRINTF("buf[%s]\n", buf);
    if (strstr(buf, "header: Return OK")) {
        T_PRINTF("OKOK!!\n");
        return 1;
    }
    T_PRINTF("FAIL!!\n");
    return 0;
}

char *vesk_fw_get_boot_ver(void)
{
    if (vesk::unique_file f = vesk::open_file("/tmp/uboot_ver", "r")) {
        // An empty file leaves the buffer as it was; the line end stays.
        (void)!fgets(boot_version_buffer, sizeof boot_version_buffer, f.get());
        return boot_version_buffer;
    }
    char buf[128] = {};
    const char *text = vesk::kNoAnswer;
    if (vesk::cmd::capture(__func__, buf, "board_config get bver") >= 0)
        text = vesk_remove_crlf(buf);
    snprintf(boot_version_buffer, sizeof boot_version_buffer, "%s", text);
    return boot_version_buffer;
}

} // extern "C"
