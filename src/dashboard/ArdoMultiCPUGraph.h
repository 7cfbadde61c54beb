#pragma once

#include <memory>
#include <vector>

#include "telemetry/CPUHistoryPoint.h"
#include "views/Element.h"

namespace norvane {

// A stacked area chart of the processor's history that keeps moving between samples: the efficiency cores'
// share below, the performance cores' above it, the whole machine's usage as the top edge. It takes all that
// it is offered.
struct ArdoMultiCPUGraph {
    std::shared_ptr<const std::vector<CPUHistoryPoint>> history;
    // Seconds from one sample to the next.
    double refreshInterval = 1.0;

    Element body() const;
};

}  // namespace norvane
