#pragma once

#include <array>

#include "telemetry/SystemSnapshot.h"

namespace norvane {

// The bands through which raw readings become flags, in the order in which a full tick updates them; the two
// that decide the energy impact come last and are updated earlier, with the impact.
enum class Band {
    cpuModerateLoadBand,
    gpuCriticalBand,
    gpuHighBand,
    gpuActiveBand,
    pCoreCriticalBand,
    pCoreActiveBand,
    idleBand,
    optimizedBand,
    thrashingBand,
    swapHighBand,
    compressionBand,
    cachingBand,
    storageCriticalBand,
    storageLowBand,
    storageFillingBand,
    storageIOBand,
    batteryWarmBand,
    impactModerateBand,
    impactHighBand,
};

// What one band goes by.
struct BandRule {
    enum class Direction { rising, falling };

    Band band;
    double thresholdOn;
    double thresholdOff;
    Direction direction;
    double (*input)(const SystemSnapshot& snapshot);
    // Null where the band's state is no flag of its own.
    bool SystemSnapshot::*flag;
};

// One for each band, in their order.
extern const std::array<BandRule, 19> kBandRules;

}  // namespace norvane
