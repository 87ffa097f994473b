// The wireless family on the emulated device's radios: a survey answered
// from its file against one the driver answers, and the client count of the
// two families (QCA: one driver request; Ralink: a shell, iwpriv and grep).
// Runs inside the emulated device, whose model answers the driver requests.
// Also the walk over a 64 KiB scan's event stream against wireless-tools'
// libiw, which exports the same names and so is loaded apart.
#include <benchmark/benchmark.h>
#include <dlfcn.h>
#include <string.h>

#include <string>
#include <vector>

#include "vesk_iw.h"
#include "vesk_wlan.h"

namespace {

void survey(benchmark::State &state, uint32_t channel)
{
    std::vector<vesk_site_survey_record> records(VESK_SURVEY_RECORDS_RALINK);
    for (auto _ : state) {
        memset(records.data(), 0, records.size() * sizeof records[0]);
        memcpy(records.data(), &channel, sizeof channel);
        benchmark::DoNotOptimize(vesk_wlan_get_site_survey("ra0", records.data(), 0xFFFF));
    }
}

// Channel 6 is answered from /tmp/survey/ch_6.txt after the first call;
// channel 0 (all) always asks the driver and writes no file.
void BM_SurveyFromFile(benchmark::State &state) { survey(state, 6); }
void BM_SurveyByDriver(benchmark::State &state) { survey(state, 0); }

void BM_ClientsQca(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(vesk_get_wlan_client_num("ath0"));
}

void BM_ClientsRalink(benchmark::State &state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(vesk_get_wlan_client_num("ra0"));
}

// A scan as a version 22 driver writes it: per cell the address, ESSID,
// frequency, mode, quality, a WPA2 element and a rate list, repeated to 64 KiB.
constexpr uint16_t kRates = 0x8B21; // SIOCGIWRATE, which vesk_iw.h does not name

std::string scan_stream()
{
    auto event = [](std::string &s, uint16_t cmd, std::string body) {
        uint16_t len = uint16_t(4 + body.size());
        s.append(reinterpret_cast<char *>(&len), 2).append(reinterpret_cast<char *>(&cmd), 2).append(body);
    };
    auto point = [](std::string payload) {
        uint16_t length = uint16_t(payload.size());
        return std::string(reinterpret_cast<char *>(&length), 2) + std::string(2, '\0') + payload;
    };
    std::string cell;
    event(cell, SIOCGIWAP, std::string("\x01\x00\x02\x00\x5e\x00\x00\x01", 8) + std::string(8, '\0'));
    event(cell, SIOCGIWESSID, point("example-network"));
    event(cell, SIOCGIWFREQ, std::string("\x6c\x16\x00\x00\x06\x00\x00\x00", 8));
    event(cell, SIOCGIWMODE, std::string("\x03\x00\x00\x00", 4));
    event(cell, IWEVQUAL, std::string("\x2a\xc0\xa0\x0f", 4));
    event(cell, IWEVGENIE, point(std::string("\x30\x14\x01\x00\x00\x0f\xac\x04\x01\x00\x00\x0f\xac\x04"
                                             "\x01\x00\x00\x0f\xac\x02\x0c\x00", 22)));
    event(cell, kRates, std::string(32, '\x01'));
    std::string s;
    while (s.size() + cell.size() <= 65535)
        s += cell;
    return s;
}

using init_fn = void (*)(vesk_iw_stream *, char *, int);
using extract_fn = int (*)(vesk_iw_stream *, iw_event *, int);

void walk(benchmark::State &state, init_fn init, extract_fn extract)
{
    if (init == nullptr || extract == nullptr) {
        const char *why = dlerror();
        state.SkipWithError(why ? why : "libiw.so.30 not loaded");
        return;
    }
    std::string stream = scan_stream();
    stream.append(64, '\0'); // libiw may look past the end
    alignas(8) char event[64]; // libiw's iw_event is the host's, larger than the device's
    int events = 0;
    for (auto _ : state) {
        vesk_iw_stream s;
        init(&s, stream.data(), int(stream.size() - 64));
        while (extract(&s, reinterpret_cast<iw_event *>(event), 22) > 0)
            events++;
        benchmark::DoNotOptimize(event);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(stream.size() - 64));
    state.counters["events"] = benchmark::Counter(events, benchmark::Counter::kAvgIterations);
}

void BM_StreamWalkVesk(benchmark::State &state) { walk(state, iw_init_event_stream, iw_extract_event_stream); }

void BM_StreamWalkLibiw(benchmark::State &state)
{
    static void *lib = dlmopen(LM_ID_NEWLM, "libiw.so.30", RTLD_NOW | RTLD_LOCAL);
    walk(state, lib ? reinterpret_cast<init_fn>(dlsym(lib, "iw_init_event_stream")) : nullptr,
         lib ? reinterpret_cast<extract_fn>(dlsym(lib, "iw_extract_event_stream")) : nullptr);
}

} // namespace

BENCHMARK(BM_StreamWalkVesk);
BENCHMARK(BM_StreamWalkLibiw);
BENCHMARK(BM_SurveyFromFile);
BENCHMARK(BM_SurveyByDriver);
BENCHMARK(BM_ClientsQca);
BENCHMARK(BM_ClientsRalink);
BENCHMARK_MAIN();
