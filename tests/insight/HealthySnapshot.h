#pragma once

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {

// A snapshot of a healthy machine on mains, as its sampler makes it.
inline SystemSnapshot healthySnapshot() {
    ScriptedMachine machine;
    const PreferencesStore preferences(machine.userDefaults);
    const auto sampler = PerformanceSampler::create(machine.platform(), preferences);
    sampler->setUIVisible(true);
    machine.settle();
    return *sampler->snapshot().get();
}

}  // namespace norvane
