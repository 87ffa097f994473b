// The stand-in platform: commands, small file queries and the store.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <time.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "quil.h"
#include "output_of.hpp"
#include "sysapi.h"
#include "vdev.hpp"

namespace {

TEST(Sysinteract, CapturesOutputAndTellsHowTheCommandEnded)
{
    const struct { const char *command; int size, result; const char *captured; } cases[] = {
        {"printf 'a\\nb\\n'", 80, 1, "a\nb\n"}, {"kill -9 $$", 80, 0, ""},
        {"true", 80, 1, ""}, {"echo oops; exit 3", 80, 0, "oops\n"}, // no output, yet a good end: positive
        {"printf 12345678", 4, 1, "123"}, {"printf 12345678", 1, 1, ""}, // size counts the terminator
        {"echo found; no-such-tool", 80, -1, "found\n"}, // the shell could not run it
        {"head -c 1048576 /dev/zero | tr '\\0' z", 8, 1, "zzzzzzz"}, // a pipe not read to the end would block
        // Lines without shell syntax run without the shell, to the same effect.
        {"/bin/echo a \t  b", 80, 1, "a b\n"}, {"echo -e a", 80, 1, "-e a\n"}, // the shell's own echo
        {"no_such_tool x", 80, -1, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.command);
        char buf[300];
        memset(buf, 'x', sizeof buf);
        EXPECT_EQ(sysinteract(buf, c.size, "%s", c.command), c.result);
        EXPECT_STREQ(buf, c.captured);
    }
    // Bad arguments leave the buffer alone.
    char buf[4] = "abc";
    EXPECT_LT(sysinteract(buf, 0, "echo x"), 0);
    EXPECT_LT(sysinteract(buf, 4, nullptr), 0);
    EXPECT_STREQ(buf, "abc");
}

TEST(Cmd, RunsThroughTheShellGivesTheStatusAndJournalsEachLineVerbatim)
{
    EXPECT_EQ(CMD("echo %s > /tmp/cmd.out && echo %d >> /tmp/cmd.out", "one", 2), 0);
    EXPECT_EQ(vdev::read("/tmp/cmd.out"), "one\n2\n");
    vdev::put("/tmp/exit5", "#!/bin/sh\nexit 5\n");
    chmod("/tmp/exit5", 0755);
    EXPECT_EQ(CMD("/tmp/exit5 x"), 5);
    std::string err = stderr_of([] { EXPECT_EQ(CMD("no_such_tool x"), 127); });
    EXPECT_NE(err.find("no_such_tool: not found"), std::string::npos) << err; // the shell's message
    EXPECT_NE(CMD("kill -TERM $$"), 0);
    EXPECT_LT(CMD(nullptr), 0);
    signal(SIGCHLD, SIG_IGN); // the status is kept when the caller ignores SIGCHLD
    EXPECT_EQ(CMD("exit 4"), 4);
    vdev::clear_journal();
    EXPECT_EQ(CMD("printf '%%s' 'a\\b\tc' > /dev/null "), 0);
    char buf[8];
    EXPECT_EQ(sysinteract(buf, sizeof buf, "echo x\n"), 1);
    EXPECT_EQ(sysinteract(buf, sizeof buf, "echo x; exit 3"), 0);
    EXPECT_EQ(signal(SIGCHLD, SIG_DFL), SIG_IGN);
    EXPECT_EQ(vdev::commands(), (std::vector<std::string>{"printf '%s' 'a\\b\tc' > /dev/null ", "echo x\n", "echo x; exit 3"}));
    EXPECT_EQ(vdev::read("/run/vdev/journal"), "$ printf '%s' 'a\\\\b\\tc' > /dev/null \n$ echo x\\n\n$ echo x; exit 3\n");
}

TEST(FileQueries, PidFileNamesALiveProcess)
{
    pid_t dead = fork();
    if (dead == 0)
        _exit(0);
    waitpid(dead, nullptr, 0);
    const struct { std::string content; int alive; } cases[] = {
        {std::to_string(getpid()) + "\n", 1}, {std::to_string(dead), 0}, {"0", 0}, {"-1", 0}, {"abc", 0}, {"", 0},
    };
    for (const auto &c : cases) {
        vdev::put("/var/run/x.pid", c.content);
        EXPECT_EQ(osapi_is_proc_pid_existed("/var/run/x.pid") > 0, c.alive == 1) << c.content;
    }
    EXPECT_EQ(osapi_is_proc_pid_existed("/var/run/none.pid"), 0);
}

// Numbers round-trip in the writer cases below.
TEST(Quil, RecordsRoundTrip)
{
    unsigned char rec[74], got[80];
    for (size_t i = 0; i < sizeof rec; i++)
        rec[i] = static_cast<unsigned char>(i * 7);
    ASSERT_EQ(quil_set_value(rec, "admin_cfg"), 0);
    memset(got, 0xEE, sizeof got);
    EXPECT_EQ(quil_get_value(got, "admin_cfg"), 1);
    EXPECT_EQ(memcmp(got, rec, sizeof rec), 0);
    EXPECT_EQ(got[74], 0xEE); // the key fixes the size: nothing past 74 bytes
}

TEST(Quil, UnknownKeysAndMissingValuesAreRefused)
{
    unsigned char buf[16] = {};
    std::string err = stderr_of([&] {
        EXPECT_EQ(quil_get_value(buf, "no_such_key"), 0);
        EXPECT_EQ(quil_set_value(buf, "wlbasic"), -1); // %d needs a digit
        EXPECT_EQ(quil_set_value(buf, "admin_cfg_x"), -1);
    });
    EXPECT_NE(err.find("no_such_key"), std::string::npos) << err;
    EXPECT_EQ(quil_get_value(buf, "timedaylight"), 0); // known but unset
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buf), sizeof buf), std::string(sizeof buf, '\0'));
    EXPECT_EQ(vdev::read(QUIL_DAT_FILE), "");
}

TEST(Quil, CorruptLinesReadAsUnsetAndAFailedWriteKeepsTheFile)
{
    vdev::put(QUIL_DAT_FILE, "timedaylight=0102\n" + std::string(2000, 'k') + "=1\nschedule_en=abc\nwlif_info\n");
    unsigned char rec[9] = {};
    EXPECT_EQ(quil_get_value(rec, "timedaylight"), 0);
    EXPECT_EQ(quil_get_int_value("schedule_en"), 0);
    int v = 1;
    ASSERT_EQ(quil_set_value(&v, "schedule_en"), 0);
    EXPECT_EQ(quil_get_int_value("schedule_en"), 1);

    std::string before = vdev::read(QUIL_DAT_FILE);
    vdev::remove(QUIL_DAT_FILE ".lock");
    ASSERT_EQ(mkdir(QUIL_DAT_FILE ".lock", 0755), 0); // the lock cannot be taken
    v = 4;
    EXPECT_EQ(quil_set_value(&v, "schedule_en"), -1);
    EXPECT_EQ(vdev::read(QUIL_DAT_FILE), before);
    EXPECT_EQ(quil_get_int_value("schedule_en"), 1);
}

TEST(Quil, TextValuesOutOfRangeAreRefused)
{
    const struct { const char *key, *text; int result; } cases[] = {
        {"radio_opmode_1", "4294967297", -1}, {"radio_opmode_1", "2147483648", -1}, {"radio_opmode_1", "", -1},
        {"radio_opmode_1", "7x", -1}, {"timedaylight", "1+1-10000000000000", -1}, {"timedaylight", "0a", -1},
        {"radio_opmode_1", "-2147483648", 0}, {"timedaylight", "0102030405060708ff", 0}, {"no_key", "1", -1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.key) + "=" + c.text);
        vdev::remove(QUIL_DAT_FILE);
        EXPECT_EQ(quil_set_text(c.key, c.text), c.result);
        EXPECT_EQ(vdev::read(QUIL_DAT_FILE), c.result ? "" : std::string(c.key) + "=" + c.text + "\n");
    }
}

TEST(Quil, KilledWritersLeaveTheOldOrTheNewValue)
{
    const unsigned char rec[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    int old = 0;
    ASSERT_EQ(quil_set_value(rec, "timedaylight"), 0); // first in the file
    ASSERT_EQ(quil_set_value(&old, "radio_opmode_1"), 0);
    unsigned int seed = 14;
    for (int i = 1; i <= 1000; i++) {
        pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0)
            _exit(quil_set_value(&i, "radio_opmode_1") ? 1 : 0);
        struct timespec pause = {0, static_cast<long>(rand_r(&seed) % 500) * 1000};
        nanosleep(&pause, nullptr);
        kill(child, SIGKILL), waitpid(child, nullptr, 0);
        int now = quil_get_int_value("radio_opmode_1");
        ASSERT_TRUE(now == old || now == i) << "after writer " << i << ": " << now;
        ASSERT_EQ(vdev::read(QUIL_DAT_FILE), "timedaylight=010203040506070809\nradio_opmode_1=" + std::to_string(now) + "\n");
        old = now;
    }
    // The next write clears the temporaries of killed writers.
    ASSERT_EQ(quil_set_value(&old, "radio_opmode_1"), 0);
    EXPECT_EQ(vdev::sh("test \"$(ls /storage)\" = \"$(printf 'quil.dat\\nquil.dat.lock')\""), 0);
}

TEST(Quil, TwoWritersAtOnceLoseNoRecord)
{
    pid_t writers[2];
    for (int w = 0; w < 2; w++) {
        if ((writers[w] = fork()) != 0)
            continue;
        for (int i = 1; i <= 200; i++)
            if (quil_set_value(&i, ((w ? "wl1" : "radio_opmode_") + std::to_string(i) + (w ? "hidessid" : "")).c_str()))
                _exit(1);
        _exit(0);
    }
    for (pid_t pid : writers) {
        int status = -1;
        ASSERT_EQ(waitpid(pid, &status, 0), pid);
        EXPECT_EQ(status, 0);
    }
    for (int i = 1; i <= 200; i++) {
        ASSERT_EQ(quil_get_int_value("radio_opmode_%d", i), i);
        ASSERT_EQ(quil_get_int_value("wl1%dhidessid", i), i);
    }
}

} // namespace
