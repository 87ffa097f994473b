#include "cli.hpp"
#include "vesk_stat.h"

namespace {

int mem(int, char **)
{
    vesk_stat_mem m = {};
    if (!vesk_stat_meminfo(&m))
        return cli::miss("cannot read /proc/meminfo");
    cli::record()
        .number_u("total", m.total)
        .number_u("used", m.used)
        .number_u("free", m.free)
        .number_u("buffers", m.buffers)
        .number_u("cached", m.cached);
    return cli::kAnswer;
}

int cpu(int, char **)
{
    vesk_stat_cpu c = {};
    if (!vesk_stat_cpuloading(&c))
        return cli::miss("cannot read /proc/stat");
    cli::record()
        .number_u("user", c.user)
        .number_u("nice", c.nice)
        .number_u("system", c.system)
        .number_u("idle", c.idle)
        .number_u("iowait", c.iowait)
        .number_u("irq", c.irq)
        .number_u("softirq", c.softirq)
        .number_u("steal", c.steal)
        .number_u("total", c.total)
        .number_u("busy", c.busy);
    return cli::kAnswer;
}

int irq(int, char **argv)
{
    unsigned int count = 0;
    return vesk_stat_interrupts(argv[0], &count) ? cli::number_u(count) : cli::miss("cannot read /proc/interrupts");
}

constexpr cli::command kCommands[] = {
    {"mem", "", "memory counters of /proc/meminfo in kB", 0, mem},
    {"cpu", "", "processor ticks since boot of /proc/stat, with total and busy", 0, cpu},
    {"irq", "NAME", "first processor's count of the first interrupt whose device matches NAME (0: none)", 1, irq},
};

} // namespace

extern const cli::family family_stat = {"stat", "memory, processor time and interrupt counters", kCommands};
