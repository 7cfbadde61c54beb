#pragma once

#include <memory>

#include "platform/ProcessInfo.h"
#include "preferences/InsightVerbosity.h"
#include "preferences/TemperatureUnit.h"
#include "telemetry/SystemSnapshot.h"
#include "views/Element.h"

namespace norvane {

// The panel of the battery: the rings of charge and temperature, where the power comes from, and the
// sentence.
struct BatteryExpandedView {
    std::shared_ptr<const SystemSnapshot> snapshot;  // null before the first
    InsightVerbosity verbosity = InsightVerbosity::detailed;
    TemperatureUnit temperatureUnit = TemperatureUnit::celsius;
    // Asked for Low Power Mode at each evaluation. Outlives the element.
    ProcessInfo& processInfo;

    Element body() const;
};

}  // namespace norvane
