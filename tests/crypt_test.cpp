#include <gtest/gtest.h>
#include <signal.h>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_crypt.h"

namespace {

using lines = std::vector<std::string>;
constexpr char kKeyFile[] = "/var/vesk_crypt_key_file";
const std::string kPlain = std::string("settings\0with a zero byte\n", 26) + std::string(3000, 'x');

TEST(Crypt, RoundTripGivesTheInputBackOnlyWithTheSameKey)
{
    const std::string key64(64, 'k');
    for (const char *key : {"", key64.c_str()}) { // an empty key is a newline
        SCOPED_TRACE(std::string("key '") + key + "'");
        vdev::put("/tmp/plain", kPlain);
        vdev::put(kKeyFile, "stale"); // as a failure leaves it: removed first
        vdev::clear_journal();
        ASSERT_EQ(vesk_crypt_enc_file("/tmp/plain", key, "/tmp/enc", 0), 1); // keep_input 0 removes the input
        ASSERT_EQ(vesk_crypt_dec_file("/tmp/enc", key, "/tmp/dec", 1), 1);
        EXPECT_EQ(vdev::read("/tmp/dec"), kPlain);
        const std::string echo = *key ? "" : "echo \"\" > /var/vesk_crypt_key_file";
        lines want = {"rm -rf /tmp/enc", "rm -rf /var/vesk_crypt_key_file", echo,
                      "lockwrap /var/vesk_crypt_key_file e /tmp/plain /tmp/enc", "rm -rf /var/vesk_crypt_key_file",
                      "rm -rf /tmp/plain", "rm -rf /tmp/dec", echo, "lockwrap /var/vesk_crypt_key_file d /tmp/enc /tmp/dec",
                      "rm -rf /var/vesk_crypt_key_file"};
        std::erase(want, "");
        EXPECT_EQ(vdev::commands(), want);

        // A wrong key fails, keeps the input, has removed the old output and leaves the key's bytes behind.
        std::string err = stderr_of([] { EXPECT_EQ(vesk_crypt_dec_file("/tmp/enc", "pass word", "/tmp/dec", 0), 0); });
        EXPECT_TRUE(err.ends_with("\nvesk_crypt_dec_file: lockwrap command error!\n")) << err;
        EXPECT_TRUE(vdev::exists("/tmp/enc"));
        EXPECT_NE(vdev::read("/tmp/dec"), kPlain);
        EXPECT_EQ(vdev::read(kKeyFile), "pass word");
    }
}

TEST(Crypt, BadArgumentsRunNothingAndLeaveOutputAlone)
{
    const std::string key65(65, 'k');
    const struct { int (*fn)(const char *, const char *, const char *, int); const char *input, *key, *output, *message; } cases[] = {
        {vesk_crypt_enc_file, nullptr, "k", "/tmp/out", "vesk_crypt_enc_file: input filename/output_filename is NULL!\n"},
        {vesk_crypt_enc_file, "/tmp/in", nullptr, "/tmp/out", "vesk_crypt_enc_file: input key error!\n"},
        {vesk_crypt_dec_file, "/tmp/in", key65.c_str(), "/tmp/out", "vesk_crypt_dec_file: input key error!\n"},
        {vesk_crypt_enc_file, "/tmp/none", "k", "/tmp/out", "vesk_crypt_enc_file: File [/tmp/none] does not exist!\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.message);
        vdev::put("/tmp/in", "abc");
        vdev::put("/tmp/out", "old");
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(c.fn(c.input, c.key, c.output, 0), 0); }), c.message);
        EXPECT_EQ(vdev::read("/tmp/out") + vdev::read("/tmp/in"), "oldabc");
    }
    EXPECT_TRUE(vdev::commands().empty());
}

TEST(Crypt, BadInputIsKeptWhenTheCallerIgnoresSigchld)
{
    vdev::put("/tmp/enc", "not an encrypted file");
    signal(SIGCHLD, SIG_IGN); // as daemons do: the kernel reaps children itself
    stderr_of([] { EXPECT_EQ(vesk_crypt_dec_file("/tmp/enc", "k", "/tmp/dec", 0), 0); });
    EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN); // the caller's setting is back
    EXPECT_EQ(vdev::read("/tmp/enc"), "not an encrypted file");
}

} // namespace
