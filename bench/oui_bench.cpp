// The vendor look-up against the plain ways to search the same keys: a
// binary search (std::lower_bound over an array of the keys) and a hash
// table, on one million keys: three in four from the table, one in four
// random 24-bit keys (mostly absent).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <unordered_map>
#include <vector>

#include "vesk_mac.h"
#include "vesk_oui_list.hpp"

namespace {

constexpr size_t kQueries = 1000000;

// The registry's keys in table order (record 0 is the sentinel).
const std::vector<uint32_t> &table_keys()
{
    static const std::vector<uint32_t> keys = [] {
        std::vector<uint32_t> k;
        for (size_t i = 1; i < vesk::kOuiRecords; i++)
            k.push_back(vesk_oui_list[i].oui);
        return k;
    }();
    return keys;
}

const std::vector<uint32_t> &queries()
{
    static const std::vector<uint32_t> q = [] {
        const auto &keys = table_keys();
        std::mt19937 rng(16);
        std::vector<uint32_t> out(kQueries);
        for (auto &key : out)
            key = rng() % 4 ? keys[rng() % keys.size()] : rng() & 0xFFFFFF;
        return out;
    }();
    return q;
}

void BM_OuiVesk(benchmark::State &state)
{
    const auto &q = queries();
    size_t i = 0;
    for (auto _ : state) {
        vesk_oui_entry e;
        e.oui = q[i];
        benchmark::DoNotOptimize(vesk_mac_oui_to_vendor_name(e));
        i = i + 1 == q.size() ? 0 : i + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_OuiLowerBound(benchmark::State &state)
{
    const auto &keys = table_keys();
    const auto &q = queries();
    size_t i = 0;
    for (auto _ : state) {
        auto at = std::lower_bound(keys.begin(), keys.end(), q[i]);
        const char *name = at != keys.end() && *at == q[i] ? vesk_oui_list[at - keys.begin() + 1].vendor_name : nullptr;
        benchmark::DoNotOptimize(name);
        i = i + 1 == q.size() ? 0 : i + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

void BM_OuiUnorderedMap(benchmark::State &state)
{
    const auto &keys = table_keys();
    std::unordered_map<uint32_t, const char *> map;
    for (size_t k = 0; k < keys.size(); k++)
        map.emplace(keys[k], vesk_oui_list[k + 1].vendor_name);
    const auto &q = queries();
    size_t i = 0;
    for (auto _ : state) {
        auto at = map.find(q[i]);
        benchmark::DoNotOptimize(at == map.end() ? nullptr : at->second);
        i = i + 1 == q.size() ? 0 : i + 1;
    }
    state.SetItemsProcessed(state.iterations());
}

} // namespace

BENCHMARK(BM_OuiVesk);
BENCHMARK(BM_OuiLowerBound);
BENCHMARK(BM_OuiUnorderedMap);
BENCHMARK_MAIN();
