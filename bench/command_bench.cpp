// The stand-in's command runner against the C library's popen and system
// and a bare posix_spawnp of the program: a plain command (no shell syntax)
// and a shell command (a pipe, a list), from a small caller and from one
// with 512 MiB resident (argument 0 or 512). Runs inside the emulated device.
//
// Each benchmark alternates the two ways call by call, so that both meet
// the same load of a shared machine, and reports the median time of each
// (ours_us, theirs_us) and the ratio of the fastest calls of each.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "sysapi.h"

extern char **environ;

namespace {

constexpr const char *kPlainOutput = "uname -s"; // prints a line
constexpr const char *kPlainQuiet = "sleep 0";   // prints nothing
constexpr const char *kShellOutput = "uname -s | cat";
constexpr const char *kShellQuiet = "sleep 0 && sleep 0";

void sysinteract_of(const char *command)
{
    char buf[128];
    benchmark::DoNotOptimize(sysinteract(buf, sizeof buf, "%s", command));
}

void popen_of(const char *command)
{
    char buf[128];
    FILE *p = popen(command, "r");
    while (p && fread(buf, 1, sizeof buf, p) > 0) {
    }
    benchmark::DoNotOptimize(p ? pclose(p) : -1);
}

void cmd_of(const char *command) { benchmark::DoNotOptimize(CMD("%s", command)); }

void system_of(const char *command) { benchmark::DoNotOptimize(system(command)); }

// The plain command as its own program, output read from a pipe.
void spawn_of(const char *)
{
    char uname[] = "uname", dash_s[] = "-s";
    char *argv[] = {uname, dash_s, nullptr};
    char buf[128];
    int fds[2];
    if (pipe(fds) != 0)
        return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, fds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, fds[0]);
    pid_t pid;
    int rc = posix_spawnp(&pid, argv[0], &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(fds[1]);
    while (read(fds[0], buf, sizeof buf) > 0) {
    }
    close(fds[0]);
    int status = 0;
    if (rc == 0)
        waitpid(pid, &status, 0);
    benchmark::DoNotOptimize(status);
}

double micros(void (*run)(const char *), const char *command)
{
    timespec t0, t1;
    clock_gettime(CLOCK_MONOTONIC, &t0);
    run(command);
    clock_gettime(CLOCK_MONOTONIC, &t1);
    return (t1.tv_sec - t0.tv_sec) * 1e6 + (t1.tv_nsec - t0.tv_nsec) / 1e3;
}

double median(std::vector<double> v)
{
    std::nth_element(v.begin(), v.begin() + v.size() / 2, v.end());
    return v[v.size() / 2];
}

void pair(benchmark::State &state, void (*ours)(const char *), void (*theirs)(const char *), const char *command)
{
    // range(0) MiB of touched memory for the time of the run.
    size_t size = static_cast<size_t>(state.range(0)) << 20;
    void *block = size ? malloc(size) : nullptr;
    if (block)
        memset(block, 1, size);
    std::vector<double> a, b;
    for (auto _ : state) {
        // Each goes first every other time: neither gains by its place.
        if (a.size() % 2) {
            a.push_back(micros(ours, command));
            b.push_back(micros(theirs, command));
        } else {
            b.push_back(micros(theirs, command));
            a.push_back(micros(ours, command));
        }
    }
    free(block);
    state.counters["ours_us"] = median(a);
    state.counters["theirs_us"] = median(b);
    // The fastest calls are the nearest to an idle machine's: their ratio.
    state.counters["ratio"] = *std::min_element(a.begin(), a.end()) / *std::min_element(b.begin(), b.end());
}

void args(benchmark::internal::Benchmark *b) { b->Arg(0)->Arg(512)->Unit(benchmark::kMillisecond)->UseRealTime(); }

} // namespace

BENCHMARK_CAPTURE(pair, sysinteract_vs_popen_plain, sysinteract_of, popen_of, kPlainOutput)->Apply(args);
BENCHMARK_CAPTURE(pair, spawn_vs_popen_plain, spawn_of, popen_of, kPlainOutput)->Apply(args);
BENCHMARK_CAPTURE(pair, sysinteract_vs_popen_shell, sysinteract_of, popen_of, kShellOutput)->Apply(args);
BENCHMARK_CAPTURE(pair, cmd_vs_system_plain, cmd_of, system_of, kPlainQuiet)->Apply(args);
BENCHMARK_CAPTURE(pair, cmd_vs_system_shell, cmd_of, system_of, kShellQuiet)->Apply(args);

// The board keeps no journal of command lines; the emulated device's
// would add a file append to each of our calls and to none of theirs.
int main(int argc, char **argv)
{
    unlink("/run/vdev/journal");
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
