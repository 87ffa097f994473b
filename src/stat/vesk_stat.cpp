// Memory, processor time and interrupt counters from /proc, one snapshot a
// call.
#include "vesk_stat.h"

#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <iterator>
#include <string_view>

#include "core/line_reader.hpp"
#include "core/unique.hpp"
#include "sysapi.h"

// Callers built against older headers pass these records by pointer.
static_assert(sizeof(vesk_stat_mem) == 20 && offsetof(vesk_stat_mem, cached) == 16);
static_assert(sizeof(vesk_stat_cpu) == 80 && offsetof(vesk_stat_cpu, steal) == 56 &&
              offsetof(vesk_stat_cpu, busy) == 72);

namespace {

constexpr const char kOpenError[] = "%s: File open error!\n";
constexpr const char kInputError[] = "Error: %s, input error!\n";

// The value of a "Label: number unit" line of /proc/meminfo.
struct meminfo_field {
    std::string_view label; // with its colon
    uint32_t vesk_stat_mem::*field;
};

constexpr meminfo_field kMeminfoFields[] = {
    {"MemTotal:", &vesk_stat_mem::total},
    {"MemFree:", &vesk_stat_mem::free},
    {"Buffers:", &vesk_stat_mem::buffers},
    {"Cached:", &vesk_stat_mem::cached},
};

// Opens the table that fills a caller's record; a null record or a file that
// cannot be opened prints its message for func and gives no file.
vesk::unique_file open_for(const void *record, const char *path, const char *func)
{
    if (!record) {
        T_PRINTF(kInputError, func);
        return {};
    }
    vesk::unique_file f = vesk::open_file(path, "r");
    if (!f)
        T_PRINTF(kOpenError, func);
    return f;
}

} // namespace

extern "C" {

int vesk_stat_meminfo(vesk_stat_mem *mem)
{
    vesk::unique_file f = open_for(mem, "/proc/meminfo", __func__);
    if (!f)
        return 0;
    mem->total = 0;
    // The device's kernel prints these four lines first and in this order;
    // newer kernels put MemAvailable between them, so each line is looked
    // up by its label. The first line of a label counts.
    unsigned int found = 0;
    char line[128];
    while (found != (1u << std::size(kMeminfoFields)) - 1 && vesk::read_line(f.get(), line)) {
        std::string_view text(line);
        for (size_t i = 0; i < std::size(kMeminfoFields); i++) {
            const meminfo_field &m = kMeminfoFields[i];
            if ((found & (1u << i)) || text.compare(0, m.label.size(), m.label) != 0)
                continue;
            unsigned long value;
            if (sscanf(line + m.label.size(), "%lu", &value) == 1)
                mem->*m.field = static_cast<uint32_t>(value);
            found |= 1u << i;
        }
    }
    mem->used = mem->total - mem->free;
    return 1;
}

int vesk_stat_cpuloading(vesk_stat_cpu *cpu)
{
    vesk::unique_file f = open_for(cpu, "/proc/stat", __func__);
    if (!f)
        return 0;
    // Numbers beyond the 79th character of the line are not read.
    char line[80] = "";
    if (!fgets(line, sizeof line, f.get()))
        line[0] = '\0';
    unsigned long long n[8] = {cpu->user, cpu->nice,    cpu->system,  cpu->idle,
                               cpu->iowait, cpu->irq, cpu->softirq, cpu->steal};
    sscanf(line, "cpu %llu %llu %llu %llu %llu %llu %llu %llu", &n[0], &n[1], &n[2], &n[3], &n[4], &n[5], &n[6],
           &n[7]);
    cpu->user = n[0];
    cpu->nice = n[1];
    cpu->system = n[2];
    cpu->idle = n[3];
    cpu->iowait = n[4];
    cpu->irq = n[5];
    cpu->softirq = n[6];
    cpu->steal = n[7];
    uint64_t total = 0;
    for (unsigned long long v : n)
        total += v;
    cpu->total = total;
    cpu->busy = total - cpu->idle - cpu->iowait;
    return 1;
}

int vesk_stat_interrupts(const char *name, unsigned int *count)
{
    if (!name || !count) {
        T_PRINTF(kInputError, __func__);
        return 0;
    }
    *count = 0;
    vesk::unique_file f = vesk::open_file("/proc/interrupts", "r");
    if (!f)
        return 0;
    char line[128];
    if (!vesk::read_line(f.get(), line)) // the heading of the processor columns
        return 1;
    while (vesk::read_line(f.get(), line)) {
        char label[32], first_cpu[128], rest[128];
        // Lines with fewer than three fields ("ERR:  0") name no device.
        if (sscanf(line, "%31s %127s %127[^\n]", label, first_cpu, rest) != 3)
            continue;
        if (strstr(rest, name)) {
            *count = static_cast<unsigned int>(atoi(first_cpu));
            return 1;
        }
    }
    return 1;
}

} // extern "C"
