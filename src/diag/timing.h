#pragma once

#include <cstdint>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <unordered_map>

#include "tree/orvomod.h"

namespace orvo {

/// What a run does one after the other. Rest: the start until TIMING= is read, and the summary.
enum class Phase : uint8_t { Read, Pass1, Pass2, Pass3, Pass4, Pass5, Listing, Tree, Rest };
inline constexpr std::string_view phaseNames[] = {"Read",   "Pass 1",  "Pass 2", "Pass 3", "Pass 4",
                                                  "Pass 5", "Listing", "Tree",   "Rest"};

struct PhaseCost {
    double seconds = 0; // of processor time
    int64_t peak = 0;   // memory of the process at the end of the phase, at its largest until then
};

struct TimingState {
    bool on = false; // TIMING=
    Phase phase = Phase::Rest;
    double since = 0; // processor time at which the phase went on
    PhaseCost phases[std::size(phaseNames)];
    std::unordered_map<const ModuleRec*, double> modules; // seconds of all phases
};
extern TimingState timingState;

/// Starts the clock, or gives up what was measured.
void setTiming(bool on);
/// Charges the time until now to the phase and the current module.
void chargeTime();
void printTiming(std::FILE* stream);

/// The scope belongs to a phase, one within it to its own. The clock is read only when it is
/// wanted.
class Timed {
  public:
    explicit Timed(Phase phase) : outer_(timingState.phase) { enter(phase); }
    Timed(const Timed&) = delete;
    Timed& operator=(const Timed&) = delete;
    ~Timed() { enter(outer_); }

  private:
    static void enter(Phase phase) {
        if (timingState.on) chargeTime();
        timingState.phase = phase;
    }
    Phase outer_;
};

} // namespace orvo
