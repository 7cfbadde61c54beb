#pragma once

#include <memory>
#include <string>
#include <vector>

#include "preferences/InsightVerbosity.h"
#include "telemetry/CPUHistoryPoint.h"
#include "telemetry/SystemSnapshot.h"
#include "views/Element.h"

namespace norvane {

// The panel of the processor: its live figures, the history's graph, and the sentence.
struct CPUExpandedView {
    std::shared_ptr<const SystemSnapshot> snapshot;  // null before the first
    std::shared_ptr<const std::vector<CPUHistoryPoint>> history;
    InsightVerbosity verbosity = InsightVerbosity::detailed;

    Element body() const;
};

// How long the machine has been up: "3h 7m" below a day, "2d 5h" from then on.
std::string formatUptime(double seconds);

}  // namespace norvane
