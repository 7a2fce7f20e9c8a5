#include "diag/timing.h"

#include <sys/resource.h>

#include <algorithm>
#include <functional>
#include <vector>

namespace orvo {

TimingState timingState;

namespace {

constexpr size_t slowestShown = 5;

PhaseCost costUntilNow() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return {seconds(usage.ru_utime) + seconds(usage.ru_stime), usage.ru_maxrss};
}

void printRow(std::FILE* stream, std::string_view name, double seconds, int64_t peak) {
    std::fprintf(stream, "%-12.*s: %9.4f s %9lld kB\n", static_cast<int>(name.size()), name.data(),
                 seconds, static_cast<long long>(peak));
}

} // namespace

void setTiming(bool on) {
    const Phase phase = timingState.phase;
    timingState = {on, phase, 0, {}, {}};
    if (!on) return;
    const PhaseCost start = costUntilNow();
    timingState.phases[static_cast<size_t>(Phase::Rest)] = start;
    timingState.since = start.seconds;
}

void chargeTime() {
    const PhaseCost now = costUntilNow();
    const double seconds = now.seconds - timingState.since;
    timingState.since = now.seconds;
    PhaseCost& phase = timingState.phases[static_cast<size_t>(timingState.phase)];
    phase.seconds += seconds;
    phase.peak = now.peak;
    timingState.modules[cMP] += seconds; // of none between the modules
}

void printTiming(std::FILE* stream) {
    chargeTime();
    std::fputs("\nTime and peak memory:\n\n", stream);
    PhaseCost total;
    for (size_t i = 0; i < std::size(phaseNames); ++i) {
        const PhaseCost& phase = timingState.phases[i];
        printRow(stream, phaseNames[i], phase.seconds, phase.peak);
        total.seconds += phase.seconds;
        total.peak = std::max(total.peak, phase.peak);
    }
    printRow(stream, "Total", total.seconds, total.peak);

    std::vector<const ModuleRec*> slowest;
    for (const ModuleRec* module = run.bOfModRList; module != nullptr; module = module->next)
        slowest.push_back(module);
    std::ranges::stable_sort(slowest, std::ranges::greater(),
                             [](const ModuleRec* module) { return timingState.modules[module]; });
    if (slowest.size() > slowestShown) slowest.resize(slowestShown);
    std::fputs("\nSlowest modules:\n\n", stream);
    for (const ModuleRec* module : slowest)
        std::fprintf(stream, "%9.4f s  %s\n", timingState.modules[module],
                     module->options.sourceFileName.c_str());
}

} // namespace orvo
