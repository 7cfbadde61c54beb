#pragma once

#include <memory>
#include <string>

#include "preferences/InsightVerbosity.h"
#include "telemetry/SystemSnapshot.h"
#include "views/Element.h"

namespace norvane {

// The panel of the memory: the status, the figures, the bar, and the sentence of this moment.
struct MemoryExpandedView {
    std::shared_ptr<const SystemSnapshot> snapshot;  // null before the first
    InsightVerbosity verbosity = InsightVerbosity::detailed;

    Element body() const;
};

// An amount of memory: "11.23 GB", from 1024 on in terabytes; "0.0 GB" for what is not finite.
std::string formatMemorySize(double gigabytes);

}  // namespace norvane
