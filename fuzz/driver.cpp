// The libFuzzer driver: VESK_FUZZ_ENTRY names the entry to run. Entries
// write device files, so the driver runs only inside the emulated device.
#include <fcntl.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "fuzz.hpp"

namespace {

const fuzz::table *tables;
const fuzz::entry *chosen;
constexpr char kBin[] = "/run/vdev/fuzz", kToolInput[] = "/run/vdev/fuzz/input";

void put(const char *path, const void *data, size_t size)
{
    int fd = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0755);
    if (fd < 0 || write(fd, data, size) != static_cast<ssize_t>(size) || close(fd) != 0) {
        perror(path);
        abort();
    }
}

} // namespace

fuzz::table::table(std::span<const entry> r) : rows(r), next(tables) { tables = this; }

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    if (access("/run/vdev/inside", F_OK) != 0) {
        fputs("vesk_fuzz: runs only inside the emulated device (emu/vdev)\n", stderr);
        exit(2);
    }
    const char *name = getenv("VESK_FUZZ_ENTRY");
    std::string names;
    for (const fuzz::table *t = tables; t; t = t->next)
        for (const fuzz::entry &e : t->rows) {
            names += std::string(" ") + e.name;
            if (name && !strcmp(name, e.name))
                chosen = &e;
        }
    if (!chosen) {
        fprintf(stderr, "vesk_fuzz: set VESK_FUZZ_ENTRY to one of:%s\n", names.c_str());
        exit(2);
    }
    if (chosen->path && strncmp(chosen->path, "tool:", 5)) {
        std::string mkdir_p = "mkdir -p " + std::string(chosen->path, strrchr(chosen->path, '/'));
        if (system(mkdir_p.c_str()) != 0)
            exit(2);
        unlink(chosen->path); // a link to the kernel's file becomes a file of the device
    } else if (chosen->path) {
        // A stand-in for the tool, ahead of the device's on PATH, prints the input.
        mkdir(kBin, 0755);
        std::string script = std::string("#!/bin/sh\ncat ") + kToolInput + "\n";
        put((std::string(kBin) + "/" + (chosen->path + 5)).c_str(), script.data(), script.size());
        setenv("PATH", (std::string(kBin) + ":" + getenv("PATH")).c_str(), 1);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const fuzz::entry &e = *chosen;
    if (e.path)
        put(strncmp(e.path, "tool:", 5) ? e.path : kToolInput, data, size);
    char *copy = static_cast<char *>(malloc(size + (e.binary ? 0 : 1)));
    memcpy(copy, data, size);
    if (!e.binary)
        copy[size] = '\0';
    e.run(copy, size);
    free(copy);
    return 0;
}
