#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "vdev.hpp"
#include "vesk_file.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

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
    CaptureStderr();
    vesk_file_text_append(kLog, "%s=%d\n", "rssi", -42);
    vesk_file_text_append(kLog, "100%% %s", "done");
    vesk_file_text_append(kLog, "%s", std::string(300, 'y').c_str());
    EXPECT_EQ(GetCapturedStderr(), "[rssi=-42\n]\n[100% done]\n[" + std::string(255, 'y') + "]\n");
    EXPECT_EQ(vdev::read(kLog), "old\nrssi=-42\n100% done" + std::string(255, 'y'));
}

TEST(FileText, AppendToAnUnopenablePathLosesTheLineQuietly)
{
    CaptureStderr();
    vesk_file_text_append("/var/no/such/dir/x.log", "lost\n");
    vesk_file_text_append("/var/log/null.log", nullptr);
    EXPECT_EQ(GetCapturedStderr(), "[lost\n]\n[]\n");
    EXPECT_FALSE(vdev::exists("/var/no/such/dir/x.log"));
    EXPECT_EQ(vdev::read("/var/log/null.log"), "");
}

TEST(FileText, AssertionsEndTheProcess)
{
    const char *range = "VESK_ASSERT FAILED 'i_max_line>=0 && i_line_to_free>=0 && i_max_line>=i_line_to_free' "
                        "vesk_file_text_truncate vesk_file.cpp:79\n";
    const struct {
        const char *name;
        void (*call)();
        std::string out;
    } cases[] = {
        {"append to null", [] { vesk_file_text_append(nullptr, "x%d\n", 1); },
         "VESK_ASSERT FAILED 'filename!=NULL' vesk_file_text_append vesk_file.cpp:44\n"},
        {"truncate null", [] { vesk_file_text_truncate(nullptr, nullptr, 10, 1); },
         "VESK_ASSERT FAILED 'filename!=NULL' vesk_file_text_truncate vesk_file.cpp:78\n"},
        {"negative maximum", [] { vesk_file_text_truncate(kLog, nullptr, -1, 0); }, range},
        {"negative to free", [] { vesk_file_text_truncate(kLog, nullptr, 10, -1); }, range},
        {"more to free than the maximum", [] { vesk_file_text_truncate(kLog, nullptr, 5, 6); }, range},
    };
    vdev::put(kLog, numbered(1, 20));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::outcome o = vdev::in_child([&] { c.call(); });
        EXPECT_EQ(o.status, 1);
        EXPECT_EQ(o.out, c.out);
        EXPECT_EQ(o.err, ""); // nothing printed before the test
    }
    EXPECT_EQ(vdev::read(kLog), numbered(1, 20));
}

TEST(FileText, TruncateKeepsTheLastLines)
{
    const struct {
        const char *name;
        int lines, max, to_free;
        int first_kept; // lines from first_kept to the end stay; 1 keeps all
    } cases[] = {
        {"at the maximum the file stays", 1000, 1000, 100, 1},
        {"one past the maximum keeps max - free", 1001, 1000, 100, 102},
        {"nothing to free keeps exactly max", 12, 10, 0, 3},
        {"free equal to max empties it", 11, 10, 10, 12},
        {"zero maximum empties any file", 1, 0, 0, 2},
        {"far past the maximum", 50, 10, 3, 44},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put(kLog, numbered(1, c.lines));
        vdev::put(kWork, "stale\n");
        EXPECT_EQ(vesk_file_text_truncate(kLog, nullptr, c.max, c.to_free), 1);
        EXPECT_EQ(vdev::read(kLog), numbered(c.first_kept, c.lines));
        EXPECT_FALSE(vdev::exists(kWork)); // removed, cut or not
    }
}

TEST(FileText, TruncateCopiesLinesByteForByte)
{
    const std::string longline = std::string(300, 'L') + "\n";
    const struct {
        const char *name;
        std::string file;
        int max, to_free;
        std::string kept;
    } cases[] = {
        {"percent signs", "a\n%s %d %n\n100%\n", 2, 0, "%s %d %n\n100%\n"},
        {"last line without newline", "a\nb\nc", 2, 1, "c"},
        // n counts the long line once, the copy loop twice: one more line survives.
        {"long line read in pieces", longline + "s1\ns2\ns3\n", 2, 0, "s1\ns2\ns3\n"},
        {"long line cut in the middle", "s0\n" + longline + "s1\n", 2, 1, longline.substr(255) + "s1\n"},
        {"empty lines count", "\n\n\nx\n", 1, 0, "x\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put(kLog, c.file);
        EXPECT_EQ(vesk_file_text_truncate(kLog, nullptr, c.max, c.to_free), 1);
        EXPECT_EQ(vdev::read(kLog), c.kept);
    }
}

TEST(FileText, BackupKeepsTheWholeOldFile)
{
    const char *bak = "/var/log/vesk.log.bak";
    vdev::put(kLog, numbered(1, 8));
    vdev::put(kWork, "stale\n");
    EXPECT_EQ(vesk_file_text_truncate(kLog, bak, 5, 2), 1);
    EXPECT_EQ(vdev::read(kLog), numbered(6, 8));
    EXPECT_EQ(vdev::read(bak), numbered(1, 8));
    EXPECT_EQ(vdev::read(kWork), "stale\n"); // only a null backup uses the work file

    // Within the bound the backup is neither written nor removed.
    EXPECT_EQ(vesk_file_text_truncate(kLog, bak, 5, 2), 1);
    EXPECT_EQ(vdev::read(bak), numbered(1, 8));

    // A second cut replaces it.
    vdev::put(kLog, numbered(20, 26));
    EXPECT_EQ(vesk_file_text_truncate(kLog, bak, 5, 2), 1);
    EXPECT_EQ(vdev::read(kLog), numbered(24, 26));
    EXPECT_EQ(vdev::read(bak), numbered(20, 26));
}

TEST(FileText, AbsentFileRunsNothing)
{
    vdev::put(kWork, "stale\n");
    EXPECT_EQ(vesk_file_text_truncate("/var/log/absent.log", nullptr, 0, 0), 1);
    EXPECT_FALSE(vdev::exists("/var/log/absent.log"));
    EXPECT_EQ(vdev::read(kWork), "stale\n");
}

TEST(FileText, FailedMoveLeavesTheFile)
{
    vdev::put(kLog, numbered(1, 8));
    // No directory for the backup.
    EXPECT_EQ(vesk_file_text_truncate(kLog, "/var/none/vesk.bak", 5, 2), 1);
    EXPECT_EQ(vdev::read(kLog), numbered(1, 8));
    // The backup names a directory in which the move is refused: what that
    // directory holds must not be copied over the file.
    ASSERT_EQ(vdev::sh("mkdir -p /var/bak/vesk.log/sub"), 0);
    EXPECT_EQ(vesk_file_text_truncate(kLog, "/var/bak", 5, 2), 1);
    EXPECT_EQ(vdev::read(kLog), numbered(1, 8));
}

// Leaves one descriptor free below the limit, so that only one more file
// can be opened at a time.
void limit_open_files_to_one_more()
{
    int lowest = open("/dev/null", O_RDONLY);
    close(lowest);
    struct rlimit rl = {static_cast<rlim_t>(lowest + 1), static_cast<rlim_t>(lowest + 1)};
    setrlimit(RLIMIT_NOFILE, &rl);
}

TEST(FileText, FailedReopenKeepsTheLinesInTheWorkFile)
{
    // The line count and the work file open; the file itself cannot be
    // opened again for writing after the move.
    vdev::put(kLog, numbered(1, 8));
    vdev::outcome o = vdev::in_child([] {
        limit_open_files_to_one_more();
        _exit(vesk_file_text_truncate(kLog, nullptr, 5, 2) == 1 ? 0 : 3);
    });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(vdev::read(kWork), numbered(1, 8));
    EXPECT_FALSE(vdev::exists(kLog));
}

TEST(FileText, AppendThenTruncateKeepsTheNewestLines)
{
    for (int i = 1; i <= 25; i++) {
        CaptureStderr();
        vesk_file_text_append(kLog, "entry %02d\n", i);
        GetCapturedStderr();
        vesk_file_text_truncate(kLog, nullptr, 10, 4);
    }
    // Each cut at 11 lines leaves 6: cuts after entries 11, 16 and 21.
    std::string want;
    for (int i = 16; i <= 25; i++)
        want += "entry " + std::to_string(i) + "\n";
    EXPECT_EQ(vdev::read(kLog), want);
}

} // namespace
