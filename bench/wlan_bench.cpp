// The wireless family on the emulated device's radios: a survey answered
// from its file against one the driver answers, and the client count of the
// two families (QCA: one driver request; Ralink: a shell, iwpriv and grep).
// Runs inside the emulated device, whose model answers the driver requests.
#include <benchmark/benchmark.h>
#include <string.h>

#include <vector>

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

} // namespace

BENCHMARK(BM_SurveyFromFile);
BENCHMARK(BM_SurveyByDriver);
BENCHMARK(BM_ClientsQca);
BENCHMARK(BM_ClientsRalink);
BENCHMARK_MAIN();
