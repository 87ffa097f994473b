#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_file.h"

namespace {

using lines = std::vector<std::string>;

constexpr char kLog[] = "/var/log/vesk.log";
constexpr char kWork[] = "/tmp/vesk_file_text_truncate.tmp";

// "line 1\n" ... "line n\n"
std::string numbered(int first, int last)
{
    std::string text;
    for (int i = first; i <= last; i++)
        text += "line " + std::to_string(i) + "\n";
    return text;
}

TEST(FileText, AppendFormatsAndAddsNoNewline)
{
    vdev::put(kLog, "old\n");
    EXPECT_EQ(stderr_of([] {
                  vesk_file_text_append(kLog, "%s=%d\n", "rssi", -42);
                  vesk_file_text_append(kLog, "100%% %s", "done");
                  vesk_file_text_append(kLog, "%s", std::string(300, 'y').c_str());
                  vesk_file_text_append("/var/no/such/dir/x.log", "lost\n"); // lost quietly
                  vesk_file_text_append("/var/log/null.log", nullptr);
              }), "[rssi=-42\n]\n[100% done]\n[" + std::string(255, 'y') + "]\n[lost\n]\n[]\n");
    EXPECT_EQ(vdev::read(kLog), "old\nrssi=-42\n100% done" + std::string(255, 'y'));
    EXPECT_TRUE(vdev::exists("/var/log/null.log"));
}

TEST(FileText, AssertionsEndTheProcess)
{
    // The condition is printed as written: one failing row shows any change to it.
    const struct { void (*call)(); std::string out; } cases[] = {
        {[] { vesk_file_text_append(nullptr, "x%d\n", 1); }, "VESK_ASSERT FAILED 'filename!=NULL' vesk_file_text_append vesk_file.cpp:44\n"},
        {[] { vesk_file_text_truncate(nullptr, nullptr, 10, 1); }, "VESK_ASSERT FAILED 'filename!=NULL' vesk_file_text_truncate vesk_file.cpp:78\n"},
        {[] { vesk_file_text_truncate(kLog, nullptr, 5, 6); },
         "VESK_ASSERT FAILED 'i_max_line>=0 && i_line_to_free>=0 && i_max_line>=i_line_to_free' "
         "vesk_file_text_truncate vesk_file.cpp:79\n"},
    };
    vdev::put(kLog, numbered(1, 20));
    for (const auto &c : cases) {
        vdev::outcome o = vdev::in_child([&] { c.call(); });
        EXPECT_EQ(std::make_tuple(o.status, o.out, o.err), std::make_tuple(1, c.out, "")); // nothing before the test
    }
    EXPECT_EQ(vdev::read(kLog), numbered(1, 20));
}

TEST(FileText, TruncateKeepsTheLastLinesByteForByte)
{
    const std::string longline = std::string(300, 'L') + "\n";
    const struct { const char *name; std::string file; int max, to_free; std::string kept; } cases[] = {
        {"at the maximum the file stays", numbered(1, 1000), 1000, 100, numbered(1, 1000)},
        {"one past the maximum keeps max - free", numbered(1, 1001), 1000, 100, numbered(102, 1001)},
        {"percent signs", "a\n%s %d %n\n100%\n", 2, 0, "%s %d %n\n100%\n"},
        // n counts the long line once, the copy loop twice: a piece of it survives.
        {"long line cut in the middle", "s0\n" + longline + "s1\n", 2, 1, longline.substr(255) + "s1\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put(kLog, c.file);
        vdev::put(kWork, "stale\n");
        vdev::clear_journal();
        EXPECT_EQ(vesk_file_text_truncate(kLog, nullptr, c.max, c.to_free), 1);
        EXPECT_EQ(vdev::read(kLog), c.kept);
        lines want = {"rm -rf /tmp/vesk_file_text_truncate.tmp"}; // removed, cut or not
        if (c.kept != c.file)
            want.insert(want.begin(), "mv /var/log/vesk.log /tmp/vesk_file_text_truncate.tmp");
        EXPECT_EQ(vdev::commands(), want);
    }
}

TEST(FileText, BackupKeepsTheWholeOldFile)
{
    const char *bak = "/var/log/vesk.log.bak";
    vdev::put(kLog, numbered(1, 8));
    EXPECT_EQ(vesk_file_text_truncate(kLog, bak, 5, 2), 1);
    EXPECT_EQ(vdev::read(kLog), numbered(6, 8));
    EXPECT_EQ(vdev::read(bak), numbered(1, 8));
    EXPECT_EQ(vesk_file_text_truncate(kLog, bak, 5, 2), 1); // within the bound, with a backup
    EXPECT_EQ(vesk_file_text_truncate("/var/log/absent.log", nullptr, 0, 0), 1);
    // No work file, and nothing for an absent file.
    EXPECT_EQ(vdev::commands(), lines{"mv /var/log/vesk.log /var/log/vesk.log.bak"});

    vdev::put(kLog, numbered(1, 8));
    // The move into this directory is refused: what it holds must not be copied over the file.
    ASSERT_EQ(vdev::sh("mkdir -p /var/bak/vesk.log/sub"), 0);
    EXPECT_EQ(vesk_file_text_truncate(kLog, "/var/bak", 5, 2), 1);
    EXPECT_EQ(vdev::read(kLog), numbered(1, 8));
}

TEST(FileText, FailedReopenKeepsTheLinesInTheWorkFile)
{
    vdev::put(kLog, numbered(1, 8));
    vdev::outcome o = vdev::in_child([] {
        // One descriptor free: the work file opens, the file itself cannot be reopened after the move.
        int lowest = open("/dev/null", O_RDONLY);
        close(lowest);
        struct rlimit rl = {static_cast<rlim_t>(lowest + 1), static_cast<rlim_t>(lowest + 1)};
        setrlimit(RLIMIT_NOFILE, &rl);
        _exit(vesk_file_text_truncate(kLog, nullptr, 5, 2) == 1 ? 0 : 3);
    });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(vdev::read(kWork), numbered(1, 8));
    EXPECT_FALSE(vdev::exists(kLog));
}

} // namespace
