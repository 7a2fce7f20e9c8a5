#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "tree/orvorec.h"
#include "tree/types.h"

namespace orvo {
namespace {

/// Creates records and reads them back, all cold: every read replaces the buffer.
void createAndReadRecords(benchmark::State& state) {
    const auto count = static_cast<uint32_t>(state.range(0));
    for (auto _ : state) {
        resetStore();
        ModuleRec module;
        changeCMP(&module);
        for (uint32_t i = 0; i < count; ++i) addTypeArc(nullptr, i);
        flushRecs(-1);
        uint64_t lines = 0;
        for (uint32_t nr = 1; nr <= count; ++nr) {
            readRec(&module, TNodeNr{nr});
            lines += tNode.line;
        }
        benchmark::DoNotOptimize(lines);
        resetStore();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(createAndReadRecords)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

/// Puts distinct strings, finds them again and reads them.
void putAndGetStrings(benchmark::State& state) {
    std::vector<std::string> texts;
    for (int64_t i = 0; i < state.range(0); ++i) texts.push_back("component-" + std::to_string(i));
    for (auto _ : state) {
        resetStore();
        ModuleRec module;
        for (const std::string& text : texts) putStri(&module, text);
        uint64_t characters = 0;
        for (const std::string& text : texts)
            characters += getStri(&module, putStri(&module, text)).size();
        benchmark::DoNotOptimize(characters);
        resetStore();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(putAndGetStrings)
    ->RangeMultiplier(10)
    ->Range(10'000, 1'000'000)
    ->Unit(benchmark::kMillisecond);

/// Re-reading the record in the buffer, on which most code relies.
void readCurrentRecord(benchmark::State& state) {
    resetStore();
    ModuleRec module;
    changeCMP(&module);
    const TNodeNr nr = addTypeArc(nullptr, 1);
    for (auto _ : state) {
        readRec(&module, nr);
        benchmark::ClobberMemory();
    }
    resetStore();
}
BENCHMARK(readCurrentRecord);

} // namespace
} // namespace orvo
