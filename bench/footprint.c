/* footprint LIBDIR: what loading libvesk and calling one function of each
 * family adds to a process, read from the kernel's smaps of this thread.
 * Run inside the emulated device (the calls read the device's files).
 *
 * Under qemu-user the guest's /proc/self/smaps may be faked by the
 * emulator; /proc/thread-self/smaps is the kernel's own view of the same
 * memory, natively and emulated. A 32-bit program's memory lies below
 * 4 GiB, so any mapping above belongs to the emulator hosting it. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

enum { F_SIZE, F_RSS, F_SHARED, F_PRIV_CLEAN, F_PRIV_DIRTY, F_COUNT };
static const char *const field_names[F_COUNT] = {"Size", "Rss", "Shared", "Private_Clean", "Private_Dirty"};

enum { G_VESK, G_PLATFORM, G_PCRE, G_PROCESS, G_COUNT };
static const char *const group_names[G_COUNT] = {"libvesk", "libvesk_platform", "libpcre", "whole process"};

struct snapshot {
    unsigned long kb[G_COUNT][F_COUNT];
};

/* One mapping of libvesk as it stands at the end. */
struct mapping {
    char perms[5];
    unsigned long kb[F_COUNT];
};
static struct mapping vesk_maps[16];
static int vesk_map_count;
static const struct snapshot *bss_target; /* the snapshot whose libvesk bss is listed */

static int group_of(const char *path)
{
    const char *base = strrchr(path, '/');
    base = base ? base + 1 : path;
    if (strncmp(base, "libvesk.so", 10) == 0)
        return G_VESK;
    if (strncmp(base, "libvesk_platform.so", 19) == 0)
        return G_PLATFORM;
    if (strncmp(base, "libpcre.so", 10) == 0)
        return G_PCRE;
    return -1;
}

static int field_of(const char *line)
{
    static const struct {
        const char *name;
        int field;
    } keys[] = {{"Size:", F_SIZE},           {"Rss:", F_RSS},
                {"Shared_Clean:", F_SHARED}, {"Shared_Dirty:", F_SHARED},
                {"Private_Clean:", F_PRIV_CLEAN}, {"Private_Dirty:", F_PRIV_DIRTY}};
    for (size_t i = 0; i < sizeof keys / sizeof keys[0]; i++)
        if (strncmp(line, keys[i].name, strlen(keys[i].name)) == 0)
            return keys[i].field;
    return -1;
}

/* A library's bss beyond its last file page is anonymous memory, and the
 * kernel may merge it with a neighbouring anonymous mapping; so it is
 * counted from the library's own program headers: the pages of each
 * segment's zero-filled tail that are resident (all private and dirty). */
static int add_bss(struct dl_phdr_info *info, size_t size, void *arg)
{
    (void)size;
    struct snapshot *s = arg;
    int g = group_of(info->dlpi_name);
    if (g < 0)
        return 0;
    const uintptr_t page = (uintptr_t)sysconf(_SC_PAGESIZE);
    for (int i = 0; i < info->dlpi_phnum; i++) {
        const ElfW(Phdr) *ph = &info->dlpi_phdr[i];
        if (ph->p_type != PT_LOAD || ph->p_memsz <= ph->p_filesz)
            continue;
        uintptr_t start = (info->dlpi_addr + ph->p_vaddr + ph->p_filesz + page - 1) & ~(page - 1);
        uintptr_t end = (info->dlpi_addr + ph->p_vaddr + ph->p_memsz + page - 1) & ~(page - 1);
        if (end <= start)
            continue;
        unsigned char vec[256];
        unsigned long resident = 0, pages = (end - start) / page;
        for (unsigned long done = 0; done < pages; done += sizeof vec) {
            unsigned long n = pages - done < sizeof vec ? pages - done : sizeof vec;
            if (mincore((void *)(start + done * page), n * page, vec) != 0)
                return 0;
            for (unsigned long k = 0; k < n; k++)
                resident += vec[k] & 1;
        }
        unsigned long size_kb = pages * page / 1024, rss_kb = resident * page / 1024;
        s->kb[g][F_SIZE] += size_kb;
        s->kb[g][F_RSS] += rss_kb;
        s->kb[g][F_PRIV_DIRTY] += rss_kb;
        if (s == bss_target && g == G_VESK && vesk_map_count < (int)(sizeof vesk_maps / sizeof vesk_maps[0])) {
            struct mapping *m = &vesk_maps[vesk_map_count++];
            memset(m, 0, sizeof *m);
            snprintf(m->perms, sizeof m->perms, "bss");
            m->kb[F_SIZE] = size_kb;
            m->kb[F_RSS] = m->kb[F_PRIV_DIRTY] = rss_kb;
        }
    }
    return 0;
}

/* Reads smaps into s; with keep, records libvesk's mappings one by one. */
static int take(struct snapshot *s, int keep)
{
    FILE *f = fopen("/proc/thread-self/smaps", "r");
    if (!f)
        f = fopen("/proc/self/smaps", "r");
    if (!f)
        return 0;
    memset(s, 0, sizeof *s);
    if (keep)
        vesk_map_count = 0;
    char line[512];
    int group = -1, counted = 0;
    struct mapping *m = NULL;
    while (fgets(line, sizeof line, f)) {
        unsigned long long start, end;
        char perms[5], path[256] = "";
        if (sscanf(line, "%llx-%llx %4s %*s %*s %*s %255s", &start, &end, perms, path) >= 3) {
            int g = group_of(path);
            group = g;
            counted = !(sizeof(void *) == 4 && end > 0x100000000ULL);
            m = NULL;
            if (keep && g == G_VESK && vesk_map_count < (int)(sizeof vesk_maps / sizeof vesk_maps[0])) {
                m = &vesk_maps[vesk_map_count++];
                memset(m, 0, sizeof *m);
                snprintf(m->perms, sizeof m->perms, "%s", perms);
            }
            continue;
        }
        int field = field_of(line);
        unsigned long kb;
        if (field < 0 || sscanf(strchr(line, ':') + 1, "%lu", &kb) != 1)
            continue;
        if (counted)
            s->kb[G_PROCESS][field] += kb;
        if (group >= 0)
            s->kb[group][field] += kb;
        if (m)
            m->kb[field] += kb;
    }
    fclose(f);
    bss_target = keep ? s : NULL;
    dl_iterate_phdr(add_bss, s);
    return 1;
}

/* One harmless call per family, found by name so that families which are
 * not built yet are only reported. */
enum kind { K_INT_VOID, K_STR_VOID, K_UINT_VOID, K_STR_UINT, K_INT_STR, K_STR_STR, K_STR_INT_INT, K_STR_STR_INT,
            K_INT_INT, K_INT_INT_STR, K_INT_STR_PUINT, K_STR_4STR, K_INT_STR_PINT_PINT, K_STR_UINT_INT };
static const struct {
    const char *family;
    const char *symbol;
    enum kind kind;
} calls[] = {
    {"core", "vesk_get_usboot", K_INT_VOID},
    {"text", "vesk_itoa", K_STR_INT_INT},
    {"util", "vesk_util_generate_random_num", K_INT_VOID},
    {"flash", "vesk_get_mtd_by_name", K_INT_STR_PINT_PINT},
    {"ip", "vesk_get_ipaddr_str", K_STR_UINT},
    {"mac", "vesk_mac_is_valid_str", K_INT_STR},
    {"oui", "vesk_mac_to_vendor_name", K_STR_STR},
    {"if", "vesk_get_host_ip_by_name", K_STR_STR_INT},
    {"route", "vesk_if_get_default_gateway", K_STR_VOID},
    {"arp", "vesk_arp_get_ifname_by_ip", K_STR_STR},
    {"snmp", "vesk_snmp_get_index_by_ifname", K_INT_INT_STR},
    {"mii", "vesk_mii_set_led", K_INT_VOID},
    {"wlan", "vesk_wlan_get_board_dual_mode", K_INT_INT},
    {"product", "vesk_product_get_fw_version", K_STR_VOID},
    {"time", "vesk_get_x_time", K_UINT_VOID},
    {"calendar", "vesk_transfer_time_format", K_STR_UINT_INT},
    {"disk", "vesk_disk_get_mount_point", K_STR_STR},
    {"logfile", "vesk_logfile_get_filename", K_STR_4STR},
    {"stat", "vesk_stat_interrupts", K_INT_STR_PUINT},
    {"hr", "vesk_hr_u32_to_str", K_STR_UINT},
    {"account", "vesk_account_get_login_type", K_STR_VOID},
};

static void call(void *fn, enum kind kind, const char *family)
{
    int i1 = 0, i2 = 0;
    unsigned int u = 0;
    switch (kind) {
    case K_INT_VOID: ((int (*)(void))fn)(); break;
    case K_STR_VOID: ((char *(*)(void))fn)(); break;
    case K_UINT_VOID: ((unsigned int (*)(void))fn)(); break;
    case K_STR_UINT: ((char *(*)(unsigned int))fn)(0xC0000201u); break;
    case K_INT_STR: ((int (*)(const char *))fn)("00:1A:2B:3C:4D:5E"); break;
    case K_STR_STR:
        /* a MAC for the vendor lookup, an address or a device otherwise */
        ((const char *(*)(const char *))fn)(strcmp(family, "oui") == 0   ? "00:1A:2B:3C:4D:5E"
                                            : strcmp(family, "arp") == 0 ? "192.0.2.10"
                                                                         : "/dev/sda1");
        break;
    case K_STR_INT_INT: ((char *(*)(int, int))fn)(12345, 10); break;
    case K_STR_STR_INT: ((char *(*)(const char *, int))fn)("localhost", 2 /* AF_INET */); break;
    case K_INT_INT: ((int (*)(int))fn)(0); break;
    case K_INT_INT_STR: ((int (*)(int, const char *))fn)(0, "ra0"); break;
    case K_INT_STR_PUINT: ((int (*)(const char *, unsigned int *))fn)("eth2", &u); break;
    case K_STR_4STR:
        ((char *(*)(const char *, const char *, const char *, const char *))fn)("/tmp", "sys", "log", "txt");
        break;
    case K_INT_STR_PINT_PINT: ((int (*)(const char *, int *, int *))fn)("boot", &i1, &i2); break;
    case K_STR_UINT_INT: ((char *(*)(unsigned int, int))fn)(3661, 0); break;
    }
}

static void print_head(const char *title, const char *first)
{
    printf("\n%s (kB)\n\n| %s | ", title, first);
    for (int f = 0; f < F_COUNT; f++)
        printf("%s | ", field_names[f]);
    printf("\n|---|");
    for (int f = 0; f < F_COUNT; f++)
        printf("---:|");
    printf("\n");
}

static void print_table(const char *title, const struct snapshot *a, const struct snapshot *b)
{
    print_head(title, "");
    for (int g = 0; g < G_COUNT; g++) {
        printf("| %s | ", group_names[g]);
        for (int f = 0; f < F_COUNT; f++)
            printf("%+ld | ", (long)b->kb[g][f] - (long)a->kb[g][f]);
        printf("\n");
    }
}

int main(int argc, char **argv)
{
    if (argc != 2) {
        fprintf(stderr, "usage: footprint LIBDIR\n");
        return 2;
    }
    static struct snapshot before, loaded, called;
    if (!take(&before, 0)) {
        fprintf(stderr, "footprint: no smaps\n");
        return 1;
    }
    char path[4096];
    snprintf(path, sizeof path, "%s/libvesk.so.1", argv[1]);
    /* A freshly built file's pages stay dirty in the page cache until they
     * are written back, and smaps would count them as the process's own. */
    int fd = open(path, O_RDONLY);
    if (fd >= 0) {
        fsync(fd);
        close(fd);
    }
    void *lib = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!lib) {
        fprintf(stderr, "footprint: %s\n", dlerror());
        return 1;
    }
    take(&loaded, 0);

    /* The calls print their own diagnostics; keep them out of the report. */
    fflush(stdout);
    int saved = dup(1);
    if (!freopen("/dev/null", "w", stdout))
        return 1;
    int found[sizeof calls / sizeof calls[0]];
    for (size_t i = 0; i < sizeof calls / sizeof calls[0]; i++) {
        void *fn = dlsym(lib, calls[i].symbol);
        found[i] = fn != NULL;
        if (fn)
            call(fn, calls[i].kind, calls[i].family);
    }
    fflush(stdout);
    dup2(saved, 1);
    close(saved);
    take(&called, 1);

    for (int pass = 1; pass >= 0; pass--) {
        printf(pass ? "\nCalled:" : "\nNot in the library yet:");
        const char *sep = " ";
        for (size_t i = 0; i < sizeof calls / sizeof calls[0]; i++)
            if (found[i] == pass) {
                printf("%s%s `%s`", sep, calls[i].family, calls[i].symbol);
                sep = ", ";
            }
        printf(".\n");
    }
    print_table("Loading the library adds", &before, &loaded);
    print_table("Calling one function of each family then adds", &loaded, &called);
    print_table("Total after the calls, counted from the start", &before, &called);

    print_head("libvesk's mappings after the calls", "mapping");
    for (int i = 0; i < vesk_map_count; i++) {
        printf("| %s | ", vesk_maps[i].perms);
        for (int f = 0; f < F_COUNT; f++)
            printf("%lu | ", vesk_maps[i].kb[f]);
        printf("\n");
    }
    return 0;
}
