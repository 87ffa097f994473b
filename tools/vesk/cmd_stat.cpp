#include <inttypes.h>
#include <stdio.h>

#include "cli.hpp"
#include "vesk_stat.h"

namespace {

int mem(int, char **)
{
    vesk_stat_mem m = {};
    if (!vesk_stat_meminfo(&m))
        return 1;
    printf("total %" PRIu32 " kB\nused %" PRIu32 " kB\nfree %" PRIu32 " kB\nbuffers %" PRIu32
           " kB\ncached %" PRIu32 " kB\n",
           m.total, m.used, m.free, m.buffers, m.cached);
    return 0;
}

int cpu(int, char **)
{
    vesk_stat_cpu c = {};
    if (!vesk_stat_cpuloading(&c))
        return 1;
    const struct {
        const char *name;
        uint64_t value;
    } rows[] = {{"user", c.user},     {"nice", c.nice}, {"system", c.system},   {"idle", c.idle},
                {"iowait", c.iowait}, {"irq", c.irq},   {"softirq", c.softirq}, {"steal", c.steal},
                {"total", c.total},   {"busy", c.busy}};
    for (const auto &r : rows)
        printf("%s %" PRIu64 "\n", r.name, r.value);
    return 0;
}

int irq(int, char **argv)
{
    unsigned int count = 0;
    if (!vesk_stat_interrupts(argv[0], &count))
        return 1;
    printf("%u\n", count);
    return 0;
}

constexpr cli::command kCommands[] = {
    {"mem", "", "memory counters of /proc/meminfo in kB", 0, mem},
    {"cpu", "", "processor ticks since boot of /proc/stat, with total and busy", 0, cpu},
    {"irq", "NAME", "first processor's count of the first interrupt whose device matches NAME", 1, irq},
};

} // namespace

extern const cli::family family_stat = {"stat", "memory, processor time and interrupt counters", kCommands};
