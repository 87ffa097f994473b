#include <gtest/gtest.h>

#include <cstring>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_fw.h"

namespace {

// A raw image header as the device's files hold it: big-endian words.
void word(std::string &b, size_t off, uint32_t v)
{
    for (int i = 0; i < 4; i++)
        b[off + i] = static_cast<char>(v >> (24 - 8 * i));
}

const char kDigest[] = "\x00\x01\x0a\x10\xff\x7f\x80\x00\x12\x34\x56\x78\x9a\xbc\xde\xf0";

std::string sample(uint32_t type)
{
    std::string b(128, '\0');
    word(b, 0, 0x48445230), word(b, 4, type), word(b, 42, 0x12345678), word(b, 62, 0xFFFFFFFE);
    word(b, 66, 0xABCDEF01), word(b, 120, 0x0E59), word(b, 124, 0x5645534B);
    b.replace(8, 4, "lead"), b.replace(25, 5, "1.2.3"), b.replace(46, 5, "AP-v2"), b.replace(86, 4, "tail");
    b.replace(70, 16, kDigest, 16);
    return b;
}

// Writes raw as an image of exactly a header's size, reads it back and returns what the printer says.
std::string printed(const std::string &raw, vesk_fw_header *h)
{
    vdev::put("/tmp/img", raw);
    EXPECT_EQ(vesk_get_firmware_header_info("/tmp/img", h), 1);
    return stderr_of([&] { vesk_print_firmware_header_info(h); });
}

TEST(FwHeader, RefusesWhatCannotBeAHeader)
{
    vesk_fw_header h;
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_firmware_header_info("/tmp/img", &h), 0); }),
              "Err: vesk_get_firmware_header_info: /tmp/img does not exist!\n");
    vdev::put("/tmp/img", sample(7).substr(0, 127));
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_firmware_header_info("/tmp/img", &h), 0); }),
              "Err: vesk_get_firmware_header_info: /tmp/img file size is too small!\n");
    EXPECT_EQ(vesk_get_firmware_header_info(nullptr, &h) + vesk_get_firmware_header_info("/tmp/img", nullptr), 0);
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
    EXPECT_EQ(std::make_tuple(uint32_t{h.lead_word}, std::string(h.lead_text), std::string(h.tail_text)),
              std::make_tuple(0x48445230u, "lead", "tail"));
    EXPECT_EQ(h.code_version[16], 0); // bytes behind a text's terminator are not carried over
    EXPECT_EQ(stderr_of([] { vesk_print_firmware_header_info(nullptr); }), "");
    // An unknown type runs on to the next line.
    EXPECT_NE(printed(sample(0x20), &h).find("\nType: 0x20 comp_file_len:  -2\n"), std::string::npos);

    // Texts without terminators run to their field's end and no further.
    std::string raw = sample(7);
    raw.replace(8, 17, 17, 'L'), raw.replace(25, 17, 17, '9'), raw.replace(46, 16, 16, 'V'), raw.replace(86, 34, 34, 'T');
    std::string out = printed(raw, &h);
    EXPECT_EQ(std::string(vesk_get_firmware_header_version(&h)), std::string(17, '9'));
    EXPECT_NE(out.find("Version id:  " + std::string(16, 'V') + "\n"), std::string::npos) << out;
    EXPECT_NE(out.find("Code Version:  " + std::string(17, '9') + "\n"), std::string::npos) << out;
}

TEST(FwHeader, VersionTextAndNumber)
{
    const struct { const char *text; unsigned dec; } cases[] = {
        {"1.2.3", 10203}, {"1.2", 10200}, {"7", 70000}, {"", 0}, {"v1.2", 0}, {"%s%n", 0}, {"1.02.005", 10205},
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

    // Now without a header it fails.
    out = stderr_of([] { EXPECT_EQ(vesk_decode_firmware("/tmp/img"), 0); });
    EXPECT_TRUE(out.ends_with("FAIL!!\n")) << out;
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_decode_firmware(nullptr), 0); }), "vesk_decode_firmware: path is NULL!\n");

    // A path of 974 characters makes the tool's answer 1024 bytes: its verdict
    // fills the 1023 characters the buffer keeps, the last newline aside.
    const std::string d200(200, 'd'), dir = "/tmp/" + d200 + "/" + d200 + "/" + d200 + "/" + d200 + "/";
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
