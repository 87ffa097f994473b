/* Snapshots of the kernel's memory, processor-time and interrupt counters.
 * Nothing is kept between calls: a load over time is the difference of two
 * snapshots, which is the caller's to take. */
#ifndef VESK_STAT_H
#define VESK_STAT_H

#include <stdint.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Memory in kilobytes, as /proc/meminfo prints it. used is total - free, so
 * buffers and cache count as used. */
typedef struct vesk_stat_mem {
    uint32_t total;
    uint32_t used;
    uint32_t free;
    uint32_t buffers;
    uint32_t cached;
} vesk_stat_mem;

/* Processor time in clock ticks since boot: the first eight numbers of the
 * "cpu" line of /proc/stat, their sum (total) and total - idle - iowait
 * (busy). */
typedef struct vesk_stat_cpu {
    uint64_t user;
    uint64_t nice;
    uint64_t system;
    uint64_t idle;
    uint64_t iowait;
    uint64_t irq;
    uint64_t softirq;
    uint64_t steal;
    uint64_t total;
    uint64_t busy;
} vesk_stat_cpu;

/* Fills mem from the MemTotal, MemFree, Buffers and Cached lines of
 * /proc/meminfo. total starts at 0; a line that is missing leaves its other
 * field as the caller had it. Returns 1 when the file was read, 0 with a
 * message when it cannot be opened or mem is null (mem untouched). */
VESK_API int vesk_stat_meminfo(vesk_stat_mem *mem);

/* Fills the first eight fields of cpu from the first line of /proc/stat
 * (read up to 79 characters), then total and busy. A number the line does
 * not give keeps the caller's value and is added in with it, so hand in a
 * zeroed record. Returns 1 when the file was read, 0 with a message when it
 * cannot be opened or cpu is null (cpu untouched). */
VESK_API int vesk_stat_cpuloading(vesk_stat_cpu *cpu);

/* Sets *count to the first processor's count of the first /proc/interrupts
 * line whose text after that count contains name (the controller or the
 * device name, or a part of one). Returns 1 when the file was read, found or
 * not (*count is 0 when not found); 0 with a message when name or count is
 * null, 0 without one (and *count 0) when the file cannot be opened. */
VESK_API int vesk_stat_interrupts(const char *name, unsigned int *count);

VESK_END_DECLS

#endif
