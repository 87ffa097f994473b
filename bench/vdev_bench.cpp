// Start-up of the emulated device: emu/vdev running /bin/true with the
// default scenario and with an empty one, beside bare unshare(1) making the
// same namespaces. Wall time per run; runs on the host (a device cannot
// start inside another).
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <stdlib.h>
#include <sys/wait.h>

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
    for (auto _ : state) {
        pid_t pid;
        int status = -1;
        if (posix_spawnp(&pid, argv[0], nullptr, nullptr, argv.data(), environ) == 0)
            waitpid(pid, &status, 0);
        if (status != 0) {
            state.SkipWithError("the command failed");
            break;
        }
    }
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
