// Start-up of the emulated device: emu/vdev running /bin/true with the
// default scenario and with an empty one, beside bare unshare(1) making the
// same namespaces. Wall time per run, and the fastest run; runs on the host
// (a device cannot start inside another).
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <time.h>

#include <algorithm>
#include <string>
#include <vector>

extern char **environ;

namespace {

void run(benchmark::State &state, std::vector<std::string> words)
{
    std::vector<char *> argv;
    for (auto &w : words)
        argv.push_back(w.data());
    argv.push_back(nullptr);
    double fastest = 1e9;
    for (auto _ : state) {
        timespec t0, t1;
        clock_gettime(CLOCK_MONOTONIC, &t0);
        pid_t pid;
        int status = -1;
        if (posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ) == 0)
            waitpid(pid, &status, 0);
        clock_gettime(CLOCK_MONOTONIC, &t1);
        if (status != 0) {
            state.SkipWithError("the command failed");
            break;
        }
        fastest = std::min(fastest, (t1.tv_sec - t0.tv_sec) * 1e3 + (t1.tv_nsec - t0.tv_nsec) / 1e6);
    }
    // The fastest start is the nearest to an idle machine's.
    state.counters["fastest_ms"] = fastest;
}

void BM_DeviceStart(benchmark::State &state) { run(state, {VDEV, "--", "/bin/true"}); }

void BM_DeviceStartEmptyScenario(benchmark::State &state)
{
    char dir[] = "/tmp/vdev-bench-XXXXXX";
    if (!mkdtemp(dir)) {
        state.SkipWithError("mkdtemp");
        return;
    }
    run(state, {VDEV, "--scenario", dir, "--", "/bin/true"});
    rmdir(dir);
}

void BM_BareUnshare(benchmark::State &state)
{
    run(state, {"unshare", "--user", "--map-root-user", "--mount", "--net", "--uts", "--ipc", "--pid", "--fork",
                "/bin/true"});
}

} // namespace

BENCHMARK(BM_DeviceStart)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_DeviceStartEmptyScenario)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_BareUnshare)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_MAIN();
