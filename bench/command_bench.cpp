// The stand-in's command runner against the C library's popen and system
// and a bare posix_spawnp of the program: a plain command (no shell syntax)
// and a shell command (a pipe, a list), from a small caller and from one
// with 512 MiB resident (argument 0 or 512). Runs inside the emulated device.
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sysapi.h"

extern char **environ;

namespace {

constexpr const char *kPlainOutput = "uname -s";          // prints a line
constexpr const char *kPlainQuiet = "sleep 0";            // prints nothing
constexpr const char *kShellOutput = "uname -s | cat";
constexpr const char *kShellQuiet = "sleep 0 && sleep 0";

// Keeps range(0) MiB of touched memory for the time of one run.
struct resident {
    void *block = nullptr;
    explicit resident(const benchmark::State &state)
    {
        size_t size = static_cast<size_t>(state.range(0)) << 20;
        if (size && (block = malloc(size)))
            memset(block, 1, size);
    }
    ~resident() { free(block); }
};

void BM_Sysinteract(benchmark::State &state, const char *command)
{
    resident mem(state);
    char buf[128];
    for (auto _ : state)
        benchmark::DoNotOptimize(sysinteract(buf, sizeof buf, "%s", command));
}

void BM_Popen(benchmark::State &state, const char *command)
{
    resident mem(state);
    char buf[128];
    for (auto _ : state) {
        FILE *p = popen(command, "r");
        while (p && fread(buf, 1, sizeof buf, p) > 0) {
        }
        benchmark::DoNotOptimize(p ? pclose(p) : -1);
    }
}

void BM_Cmd(benchmark::State &state, const char *command)
{
    resident mem(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(CMD("%s", command));
}

void BM_System(benchmark::State &state, const char *command)
{
    resident mem(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(system(command));
}

// The plain command as its own program, output read from a pipe.
void BM_Spawn(benchmark::State &state)
{
    resident mem(state);
    char uname[] = "uname", dash_s[] = "-s";
    char *argv[] = {uname, dash_s, nullptr};
    char buf[128];
    for (auto _ : state) {
        int fds[2];
        if (pipe(fds) != 0)
            break;
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
}

void args(benchmark::internal::Benchmark *b) { b->Arg(0)->Arg(512)->Unit(benchmark::kMicrosecond)->UseRealTime(); }

} // namespace

BENCHMARK_CAPTURE(BM_Sysinteract, plain, kPlainOutput)->Apply(args);
BENCHMARK_CAPTURE(BM_Popen, plain, kPlainOutput)->Apply(args);
BENCHMARK(BM_Spawn)->Apply(args);
BENCHMARK_CAPTURE(BM_Sysinteract, shell, kShellOutput)->Apply(args);
BENCHMARK_CAPTURE(BM_Popen, shell, kShellOutput)->Apply(args);
BENCHMARK_CAPTURE(BM_Cmd, plain, kPlainQuiet)->Apply(args);
BENCHMARK_CAPTURE(BM_System, plain, kPlainQuiet)->Apply(args);
BENCHMARK_CAPTURE(BM_Cmd, shell, kShellQuiet)->Apply(args);
BENCHMARK_CAPTURE(BM_System, shell, kShellQuiet)->Apply(args);
BENCHMARK_MAIN();
