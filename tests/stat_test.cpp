#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_stat.h"

namespace {

constexpr unsigned kKept = 0xAAAAAAAA; // a field the call must not touch

TEST(Stat, MemoryFromMeminfo)
{
    const struct { const char *file; vesk_stat_mem want; } cases[] = {
        {"MemTotal: 100 kB\nMemAvailable: 70 kB\nMemFree: 40 kB\nSwapCached: 7 kB\nBuffers: 1 kB\nCached: 2 kB\n", // by label
         {100, 60, 40, 1, 2}},
        {"", {0, 0 - kKept, kKept, kKept, kKept}}, // total is reset
        {"MemTotal: 900 kB\nMemFree: lots\n", {900, 900 - kKept, kKept, kKept, kKept}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        vdev::put("/proc/meminfo", c.file);
        vesk_stat_mem m = {kKept, kKept, kKept, kKept, kKept};
        ASSERT_EQ(vesk_stat_meminfo(&m), 1);
        const vesk_stat_mem &w = c.want;
        EXPECT_EQ(std::make_tuple(m.total, m.used, m.free, m.buffers, m.cached),
                  std::make_tuple(w.total, w.used, w.free, w.buffers, w.cached));
    }
}

TEST(Stat, ProcessorTimeFromTheFirstLine)
{
    const struct { const char *file; unsigned long long want[10]; } cases[] = { // ..., steal, total, busy
        {"cpu  100 0 50 800 50 0 0 0 0 0\ncpu0 1 1 1 1 1 1 1 1 1 1\n", {100, 0, 50, 800, 50, 0, 0, 0, 1000, 150}},
        {"cpu 5000000000 0 0 10000000000 0 0 0 0\n",
         {5000000000ull, 0, 0, 10000000000ull, 0, 0, 0, 0, 15000000000ull, 5000000000ull}},
        {"cpu 10 20 30 40\n", {10, 20, 30, 40, 5, 5, 5, 5, 120, 75}}, // an old kernel's four numbers
        // 79 characters are read: the eighth number lies beyond them.
        {"cpu  1000000001 1000000002 1000000003 1000000004 1000000005 1000000006 1000000007 1000000008\n",
         {1000000001, 1000000002, 1000000003, 1000000004, 1000000005, 1000000006, 10000000, 5, 6010000026ull,
          4010000017ull}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.file);
        vdev::put("/proc/stat", c.file);
        vesk_stat_cpu cpu = {5, 5, 5, 5, 5, 5, 5, 5, 77, 77};
        ASSERT_EQ(vesk_stat_cpuloading(&cpu), 1);
        const unsigned long long got[10] = {cpu.user, cpu.nice,    cpu.system, cpu.idle,  cpu.iowait,
                                            cpu.irq,  cpu.softirq, cpu.steal,  cpu.total, cpu.busy};
        EXPECT_EQ(std::vector(got, got + 10), std::vector(c.want, c.want + 10));
    }
}

TEST(Stat, UnreadableFilesAndNullRecords)
{
    vdev::remove("/proc/meminfo");
    vdev::remove("/proc/stat");
    vesk_stat_mem m = {1, 2, 3, 4, 5};
    vesk_stat_cpu cpu = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_stat_meminfo(&m), 0); }), "vesk_stat_meminfo: File open error!\n");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_stat_cpuloading(&cpu), 0); }), "vesk_stat_cpuloading: File open error!\n");
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_stat_meminfo(nullptr), 0); }), "Error: vesk_stat_meminfo, input error!\n");
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_stat_cpuloading(nullptr), 0); }), "Error: vesk_stat_cpuloading, input error!\n");
    EXPECT_EQ(std::make_tuple(m.total, m.cached, cpu.user, cpu.busy), std::make_tuple(1u, 5u, 1ull, 10ull));
}

TEST(Stat, InterruptCountOfTheFirstMatchingLine)
{
    // The tail of the line too long for the buffer must not read as a line of its own.
    vdev::put("/proc/interrupts", "           CPU0       CPU1\n  5:     304127      100   MIPS  eth2\n"
                                  "  6:     812244      200   MIPS  ra0\n  9: 1 MIPS " + std::string(150, 'x') +
                                      " 77 junk eth9\n 12:      55555      500   MIPS  ra0-second\nERR:          0\n");
    const struct { const char *name; unsigned int count; } cases[] = {
        {"ra0", 812244}, {"MIPS", 304127}, // the first of two matches; the controller's word matches too
        {"second", 55555}, {"eth9", 0}, {"ERR", 0}, {"CPU1", 0}, // neither the label nor the heading is searched
    };
    unsigned int count = kKept;
    for (const auto &c : cases) {
        EXPECT_EQ(vesk_stat_interrupts(c.name, &count), 1) << c.name;
        EXPECT_EQ(count, c.count) << c.name;
        count = kKept;
    }
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_stat_interrupts(nullptr, &count) + vesk_stat_interrupts("eth2", nullptr), 0); }),
              "Error: vesk_stat_interrupts, input error!\nError: vesk_stat_interrupts, input error!\n");
    EXPECT_EQ(count, kKept);
    vdev::remove("/proc/interrupts");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_stat_interrupts("eth2", &count), 0); }), "");
    EXPECT_EQ(count, 0u);
}

} // namespace
