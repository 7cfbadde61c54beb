#include "telemetry/StateClassifier.h"

#include "telemetry/MemoryPressure.h"

namespace norvane {
namespace {

constexpr double kCriticalCPUPercent = 85.0;

ComponentState stateOf(bool isCritical) {
    return isCritical ? ComponentState::critical : ComponentState::normal;
}

}  // namespace

StateClassifier::StateClassifier() {
    bands_.reserve(kBandRules.size());
    for (const BandRule& rule : kBandRules)
        bands_.emplace_back(rule.thresholdOn, rule.thresholdOff);
}

SystemStates StateClassifier::updateStates(double cpuUsagePercent, std::int64_t memoryPressure,
                                           ThermalLevel thermalLevel, WallInstant now) {
    const bool cpuCritical = cpuUsagePercent >= kCriticalCPUPercent;
    const bool memCritical = memoryPressure >= kCriticalMemoryPressure;
    const bool thermalCritical = isThermallyLimited(thermalLevel);
    SystemStates states;
    states.cpuState = cpuDebouncer_.update(stateOf(cpuCritical), now);
    states.memoryState = memDebouncer_.update(stateOf(memCritical), now);
    // The raw conditions, so that heat counts as well and no wait is added to a wait.
    states.systemState = sysDebouncer_.update(stateOf(cpuCritical || memCritical || thermalCritical), now);
    return states;
}

void StateClassifier::classify(SystemSnapshot& snapshot, WallInstant now) {
    // Before the bands, so that the impact goes by the thrashing of the last full tick.
    snapshot.energyImpact = impactDebouncer_.update(undebouncedImpact(snapshot), now);
    for (const BandRule& rule : kBandRules) {
        if (rule.flag != nullptr) snapshot.*rule.flag = update(rule, snapshot);
    }
}

// A machine that is held back by heat or by its own swapping works as hard as it can, whatever its load says;
// the load's bands then stand still.
ImpactState StateClassifier::undebouncedImpact(const SystemSnapshot& snapshot) {
    if (isThermallyLimited(snapshot.thermalLevel)) return ImpactState::high;
    if (snapshot.memoryPressure > kNormalMemoryPressure && isActive(Band::thrashingBand)) {
        return ImpactState::high;
    }
    const bool isHigh = update(Band::impactHighBand, snapshot);
    const bool isModerate = update(Band::impactModerateBand, snapshot);
    if (isHigh) return ImpactState::high;
    return isModerate ? ImpactState::moderate : ImpactState::low;
}

bool StateClassifier::update(const BandRule& rule, const SystemSnapshot& snapshot) {
    Deadband& band = bands_[static_cast<std::size_t>(rule.band)];
    const double value = rule.input(snapshot);
    return rule.direction == BandRule::Direction::falling ? band.updateFalling(value) : band.update(value);
}

bool StateClassifier::update(Band band, const SystemSnapshot& snapshot) {
    return update(kBandRules[static_cast<std::size_t>(band)], snapshot);
}

}  // namespace norvane
