#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/WallInstant.h"
#include "telemetry/BandRule.h"
#include "telemetry/Deadband.h"
#include "telemetry/ImpactState.h"
#include "telemetry/StateDebouncer.h"
#include "telemetry/SystemSnapshot.h"
#include "telemetry/SystemStates.h"
#include "telemetry/ThermalLevel.h"

namespace norvane {

// Decides what raw readings mean: states through debouncers, flags through bands, so that no momentary spike
// and no hovering value reaches the user. Belongs to the tick.
class StateClassifier {
 public:
    StateClassifier();

    // On every tick. `cpuUsagePercent` is the momentary one.
    SystemStates updateStates(double cpuUsagePercent, std::int64_t memoryPressure, ThermalLevel thermalLevel,
                              WallInstant now);

    // On every full tick: sets `energyImpact` and all flags of a snapshot that has everything else.
    void classify(SystemSnapshot& snapshot, WallInstant now);

    bool isActive(Band band) const { return bands_[static_cast<std::size_t>(band)].isActive(); }

 private:
    ImpactState undebouncedImpact(const SystemSnapshot& snapshot);
    bool update(const BandRule& rule, const SystemSnapshot& snapshot);
    bool update(Band band, const SystemSnapshot& snapshot);

    std::vector<Deadband> bands_;  // in the order of `kBandRules`
    StateDebouncer<ComponentState> cpuDebouncer_;
    StateDebouncer<ComponentState> memDebouncer_;
    StateDebouncer<ComponentState> sysDebouncer_;
    StateDebouncer<ImpactState> impactDebouncer_;
};

}  // namespace norvane
