#include <gtest/gtest.h>

#include <string.h>

#include "vdev.hpp"
#include "vesk_stat.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

constexpr unsigned kKept = 0xAAAAAAAA; // a field the call must not touch

TEST(Stat, MemoryFromMeminfo)
{
    const struct {
        const char *name;
        const char *file;
        vesk_stat_mem want;
    } cases[] = {
        {"device layout",
         "MemTotal:          30000 kB\nMemFree:           10000 kB\nBuffers:            3412 kB\n"
         "Cached:            14236 kB\nSwapCached:            0 kB\n",
         {30000, 20000, 10000, 3412, 14236}},
        {"MemAvailable between the lines",
         "MemTotal:       61268 kB\nMemFree:        20840 kB\nMemAvailable:   40000 kB\n"
         "Buffers:         3412 kB\nCached:         14236 kB\nSwapCached:         0 kB\n",
         {61268, 40428, 20840, 3412, 14236}},
        {"SwapCached before Cached is not taken for it",
         "MemTotal: 100 kB\nMemFree: 40 kB\nSwapCached: 7 kB\nBuffers: 1 kB\nCached: 2 kB\n",
         {100, 60, 40, 1, 2}},
        {"missing lines keep the caller's fields", "MemTotal: 500 kB\n", {500, 500 - kKept, kKept, kKept, kKept}},
        {"empty file: total is 0", "", {0, 0 - kKept, kKept, kKept, kKept}},
        {"a number that does not parse keeps the field", "MemTotal: 900 kB\nMemFree: lots\n",
         {900, 900 - kKept, kKept, kKept, kKept}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/proc/meminfo", c.file);
        vesk_stat_mem m = {kKept, kKept, kKept, kKept, kKept};
        ASSERT_EQ(vesk_stat_meminfo(&m), 1);
        EXPECT_EQ(m.total, c.want.total);
        EXPECT_EQ(m.used, c.want.used);
        EXPECT_EQ(m.free, c.want.free);
        EXPECT_EQ(m.buffers, c.want.buffers);
        EXPECT_EQ(m.cached, c.want.cached);
    }
}

TEST(Stat, ProcessorTimeFromTheFirstLine)
{
    const struct {
        const char *name;
        const char *file;
        unsigned long long want[10];
    } cases[] = {
        {"two blanks after the word", "cpu  100 0 50 800 50 0 0 0 0 0\ncpu0 1 1 1 1 1 1 1 1 1 1\n",
         {100, 0, 50, 800, 50, 0, 0, 0, 1000, 150}},
        {"one blank", "cpu 100 0 50 800 50 0 0 0\n", {100, 0, 50, 800, 50, 0, 0, 0, 1000, 150}},
        {"64-bit counters", "cpu 5000000000 0 0 10000000000 0 0 0 0\n",
         {5000000000ull, 0, 0, 10000000000ull, 0, 0, 0, 0, 15000000000ull, 5000000000ull}},
        {"old kernel with four numbers keeps the rest", "cpu 10 20 30 40\n",
         {10, 20, 30, 40, 5, 5, 5, 5, 120, 75}},
        // 79 characters are read: the eighth number lies beyond them.
        {"long line loses its last numbers",
         "cpu  1000000001 1000000002 1000000003 1000000004 1000000005 1000000006 1000000007 1000000008\n",
         {1000000001, 1000000002, 1000000003, 1000000004, 1000000005, 1000000006, 10000000, 5,
          6010000026ull, 4010000017ull}},
        {"no cpu line", "intr 5\n", {5, 5, 5, 5, 5, 5, 5, 5, 40, 30}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/proc/stat", c.file);
        vesk_stat_cpu cpu = {5, 5, 5, 5, 5, 5, 5, 5, 77, 77};
        ASSERT_EQ(vesk_stat_cpuloading(&cpu), 1);
        const unsigned long long got[10] = {cpu.user,    cpu.nice, cpu.system,  cpu.idle,  cpu.iowait,
                                            cpu.irq,     cpu.softirq, cpu.steal, cpu.total, cpu.busy};
        for (int i = 0; i < 10; i++)
            EXPECT_EQ(got[i], c.want[i]) << "field " << i;
    }
}

TEST(Stat, UnreadableFilesLeaveTheRecord)
{
    vdev::remove("/proc/meminfo");
    vdev::remove("/proc/stat");
    vesk_stat_mem m = {1, 2, 3, 4, 5};
    vesk_stat_cpu cpu = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    CaptureStderr();
    EXPECT_EQ(vesk_stat_meminfo(&m), 0);
    EXPECT_EQ(vesk_stat_cpuloading(&cpu), 0);
    EXPECT_EQ(GetCapturedStderr(),
              "vesk_stat_meminfo: File open error!\nvesk_stat_cpuloading: File open error!\n");
    EXPECT_EQ(m.total, 1u);
    EXPECT_EQ(m.cached, 5u);
    EXPECT_EQ(cpu.user, 1u);
    EXPECT_EQ(cpu.busy, 10u);

    CaptureStderr();
    EXPECT_EQ(vesk_stat_meminfo(nullptr), 0);
    EXPECT_EQ(vesk_stat_cpuloading(nullptr), 0);
    EXPECT_EQ(GetCapturedStderr(),
              "Error: vesk_stat_meminfo, input error!\nError: vesk_stat_cpuloading, input error!\n");
}

TEST(Stat, InterruptCountOfTheFirstMatchingLine)
{
    vdev::put("/proc/interrupts", "           CPU0       CPU1\n"
                                  "  5:     304127      100   MIPS  eth2\n"
                                  "  6:     812244      200   MIPS  ra0\n"
                                  "  7:    1204311      300   MIPS  timer\n"
                                  " 11:      91022      400   MIPS  ath0\n"
                                  " 12:      55555      500   MIPS  ra0-second\n"
                                  "ERR:          0\n");
    const struct {
        const char *name;
        unsigned int count;
    } cases[] = {
        {"eth2", 304127},  {"ra0", 812244}, // the first of two matches
        {"ath", 91022},    {"timer", 1204311}, {"MIPS", 304127}, // the controller's word matches too
        {"second", 55555}, {"wifi9", 0},    {"ERR", 0}, // the label is not searched
        {"CPU1", 0},       // nor the heading
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        unsigned int count = kKept;
        EXPECT_EQ(vesk_stat_interrupts(c.name, &count), 1);
        EXPECT_EQ(count, c.count);
    }
}

TEST(Stat, InterruptLinesTooLongForTheBufferAreNotSplit)
{
    // The tail of an overlong line must not read as a line of its own.
    std::string file = "CPU0\n  9: 1 MIPS " + std::string(150, 'x') + " 77 junk eth9\n 10: 42 MIPS eth3\n";
    vdev::put("/proc/interrupts", file);
    unsigned int count = kKept;
    EXPECT_EQ(vesk_stat_interrupts("eth9", &count), 1);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(vesk_stat_interrupts("eth3", &count), 1);
    EXPECT_EQ(count, 42u);
}

TEST(Stat, InterruptFailures)
{
    unsigned int count = kKept;
    CaptureStderr();
    EXPECT_EQ(vesk_stat_interrupts(nullptr, &count), 0);
    EXPECT_EQ(vesk_stat_interrupts("eth2", nullptr), 0);
    EXPECT_EQ(GetCapturedStderr(),
              "Error: vesk_stat_interrupts, input error!\nError: vesk_stat_interrupts, input error!\n");
    EXPECT_EQ(count, kKept);

    vdev::remove("/proc/interrupts");
    CaptureStderr();
    EXPECT_EQ(vesk_stat_interrupts("eth2", &count), 0);
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(count, 0u);
}

} // namespace
