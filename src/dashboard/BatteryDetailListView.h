#pragma once

#include <memory>

#include "telemetry/SystemSnapshot.h"
#include "views/Element.h"

namespace norvane {

// The details of the battery: its health, and what it was built for and still holds.
struct BatteryDetailListView {
    std::shared_ptr<const SystemSnapshot> snapshot;  // null before the first

    Element body() const;
};

}  // namespace norvane
