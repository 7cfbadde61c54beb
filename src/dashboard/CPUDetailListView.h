#pragma once

#include <memory>

#include "telemetry/CPUHardwareInfo.h"
#include "telemetry/SystemSnapshot.h"
#include "views/Element.h"

namespace norvane {

// The details of the processor: the chip's name, its clusters, and a ring for each core. Nothing without a
// snapshot.
struct CPUDetailListView {
    std::shared_ptr<const SystemSnapshot> snapshot;
    // Outlives the element's evaluation.
    const CPUHardwareInfo& hw;

    Element body() const;
};

}  // namespace norvane
