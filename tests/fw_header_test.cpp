#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_fw.h"

namespace {

// A raw image header as the device's files hold it: big-endian words.
struct raw_header {
    unsigned char b[128] = {};
    raw_header &word(size_t off, uint32_t v)
    {
        for (int i = 0; i < 4; i++)
            b[off + i] = static_cast<unsigned char>(v >> (24 - 8 * i));
        return *this;
    }
    raw_header &text(size_t off, std::string_view t)
    {
        memcpy(b + off, t.data(), t.size());
        return *this;
    }
    std::string str() const { return {reinterpret_cast<const char *>(b), sizeof b}; }
};

const unsigned char kDigest[16] = {0x00, 0x01, 0x0a, 0x10, 0xff, 0x7f, 0x80, 0x00,
                                   0x12, 0x34, 0x56, 0x78, 0x9a, 0xbc, 0xde, 0xf0};

raw_header sample(uint32_t type)
{
    raw_header h;
    h.word(0, 0x48445230).word(4, type).text(8, "lead").text(25, "1.2.3");
    h.word(42, 0x12345678).text(46, "AP-v2").word(62, 0xFFFFFFFE).word(66, 0xABCDEF01);
    memcpy(h.b + 70, kDigest, 16);
    h.text(86, "tail").word(120, 0x0E59).word(124, 0x5645534B);
    return h;
}

// Writes raw as an image, reads it back and returns what the printer says.
std::string printed(const raw_header &raw, vesk_fw_header *h)
{
    vdev::put("/tmp/img", raw.str() + "payload behind the header");
    EXPECT_EQ(vesk_get_firmware_header_info("/tmp/img", h), 1);
    return stderr_of([&] { vesk_print_firmware_header_info(h); });
}

TEST(FwHeader, RefusesWhatCannotBeAHeader)
{
    const struct { size_t size; int result; const char *message; } cases[] = { // size 0: no file
        {0, 0, "Err: vesk_get_firmware_header_info: /tmp/img does not exist!\n"},
        {127, 0, "Err: vesk_get_firmware_header_info: /tmp/img file size is too small!\n"}, {128, 1, ""},
    };
    vesk_fw_header h;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.size);
        vdev::remove("/tmp/img");
        if (c.size)
            vdev::put("/tmp/img", sample(7).str().substr(0, c.size));
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_firmware_header_info("/tmp/img", &h), c.result); }), c.message);
    }
    EXPECT_EQ(vesk_get_firmware_header_info(nullptr, &h) + vesk_get_firmware_header_info("/tmp/img", nullptr), 0);

    // The image is opened read-write: root writes through file modes, so it lies on a read-only mount.
    ASSERT_EQ(mkdir("/mnt/ro", 0755), 0);
    ASSERT_EQ(mount("ro", "/mnt/ro", "tmpfs", 0, nullptr), 0);
    vdev::put("/mnt/ro/img", sample(3).str());
    ASSERT_EQ(mount(nullptr, "/mnt/ro", nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_firmware_header_info("/mnt/ro/img", &h), 0); }),
              "vesk_get_firmware_header_info: Cannot open /mnt/ro/img !!\n");
}

TEST(FwHeader, ReadsBigEndianWordsAndPrintsEveryField)
{
    vesk_fw_header h;
    memset(&h, 0xEE, sizeof h);
    EXPECT_EQ(printed(sample(3), &h), "------- Header Info -------\nVendor  id:  0x1234\nProduct id:  0x5678\n"
                                      "Hardware id:  0x12345678\nVersion id:  AP-v2\nCode Version:  1.2.3\n"
                                      "Type: 0x3 [Kernel]\ncomp_file_len:  -2\ncomp_file_sum:  0xabcdef01\n"
                                      "Header sum:  0xe59\nMagic key:  0x5645534b\n"
                                      "MD5 chksum:  01a10ff7f800123456789abcdef0\n------------------------------\n");
    // Fields the printer does not show.
    EXPECT_EQ(h.lead_word, 0x48445230u);
    EXPECT_STREQ(h.lead_text, "lead");
    EXPECT_STREQ(h.tail_text, "tail");
    EXPECT_EQ(h.comp_file_len, 0xFFFFFFFEu);
    EXPECT_EQ(memcmp(h.md5_chksum, kDigest, 16), 0);
    EXPECT_EQ(h.code_version[16], 0); // bytes behind a text's terminator are not carried over
    EXPECT_EQ(stderr_of([] { vesk_print_firmware_header_info(nullptr); }), "");
    // An unknown type runs on to the next line.
    EXPECT_NE(printed(sample(0x20), &h).find("\nType: 0x20 comp_file_len:  -2\n"), std::string::npos);

    // Texts without terminators run to their field's end and no further.
    raw_header raw = sample(7);
    memset(raw.b + 8, 'L', 17);
    memset(raw.b + 25, '9', 17);
    memset(raw.b + 46, 'V', 16);
    memset(raw.b + 86, 'T', 34);
    std::string out = printed(raw, &h);
    EXPECT_EQ(std::string(vesk_get_firmware_header_version(&h)), std::string(17, '9'));
    EXPECT_NE(out.find("Version id:  " + std::string(16, 'V') + "\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Code Version:  " + std::string(17, '9') + "\n"), std::string::npos) << out;
}

TEST(FwHeader, VersionTextAndNumber)
{
    const struct { const char *text; unsigned dec; } cases[] = {
        {"1.2.3", 10203}, {"1.2", 10200}, {"2.10.3", 21003}, {"7", 70000}, {"", 0}, {"v1.2", 0}, {"%s%n", 0},
        {"1.02.005", 10205},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        vesk_fw_header h = {};
        strcpy(h.code_version, c.text);
        EXPECT_STREQ(vesk_get_firmware_header_version(&h), c.text);
        EXPECT_EQ(vesk_get_firmware_header_version_dec(&h), c.dec);
    }
    EXPECT_STREQ(vesk_get_firmware_header_version(nullptr), "");
    EXPECT_EQ(vesk_get_firmware_header_version_dec(nullptr), 0u);
}

TEST(FwHeader, DecodeAsksTheHeaderTool)
{
    vdev::put("/tmp/payload", "kernel bytes");
    ASSERT_EQ(vdev::sh("header -s /tmp/payload -d /tmp/img -a -t Kernel -c 1.2.3 >/dev/null"), 0);
    vdev::clear_journal();
    std::string out = stderr_of([] { EXPECT_EQ(vesk_decode_firmware("/tmp/img"), 1); });
    // The tool's verdict stands behind another line of its output.
    EXPECT_EQ(out.rfind("buf[header: /tmp/img: type 3, version 1.2.3\nheader: Return OK\n]\nOKOK!!\n", 0), 0u) << out;
    EXPECT_EQ(vdev::commands(), std::vector<std::string>{"header -x /tmp/img"});
    EXPECT_EQ(vdev::read("/tmp/img"), "kernel bytes");

    // Now without a header it fails.
    out = stderr_of([] { EXPECT_EQ(vesk_decode_firmware("/tmp/img"), 0); });
    EXPECT_TRUE(out.ends_with("FAIL!!\n")) << out;
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_decode_firmware(nullptr), 0); }), "vesk_decode_firmware: path is NULL!\n");

    // A path of 974 characters makes the tool's answer 1024 bytes: its verdict
    // fills the 1023 characters the buffer keeps, the last newline aside.
    const std::string dir = "/tmp/" + std::string(200, 'd') + "/" + std::string(200, 'd') + "/" +
                            std::string(200, 'd') + "/" + std::string(200, 'd') + "/";
    const std::string img = dir + std::string(974 - dir.size(), 'i');
    ASSERT_EQ(vdev::sh("mkdir -p " + dir + " && header -s /tmp/payload -d " + img + " -a -t Kernel -c 1.2.3 >/dev/null"), 0);
    out = stderr_of([&] { EXPECT_EQ(vesk_decode_firmware(img.c_str()), 1); });
    EXPECT_TRUE(out.ends_with("header: Return OK]\nOKOK!!\n")) << out.substr(out.size() - 40);
}

TEST(FwHeader, BootVersionFromFileElseBoard)
{
    vdev::set_board("bver", "2.0.1");
    EXPECT_STREQ(vesk_fw_get_boot_ver(), "2.0.1");
    vdev::put("/tmp/uboot_ver", "1.1.4\nsecond line\n");
    EXPECT_STREQ(vesk_fw_get_boot_ver(), "1.1.4\n");
    vdev::put("/tmp/uboot_ver", "");
    EXPECT_STREQ(vesk_fw_get_boot_ver(), "1.1.4\n"); // an empty file changes nothing
    vdev::put("/tmp/uboot_ver", std::string(300, 'b'));
    EXPECT_EQ(std::string(vesk_fw_get_boot_ver()), std::string(127, 'b'));
    vdev::remove("/tmp/uboot_ver");
    vdev::sh("sed -i '/^bver=/d' /run/vdev/board.conf");
    EXPECT_STREQ(vesk_fw_get_boot_ver(), ""); // the tool ran and printed nothing
    // A board without the tool: the shell cannot find it.
    ASSERT_EQ(setenv("PATH", "/usr/bin:/bin", 1), 0);
    EXPECT_STREQ(vesk_fw_get_boot_ver(), "---");
}

} // namespace
