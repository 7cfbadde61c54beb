#pragma once

#include <set>
#include <string>
#include <vector>

#include "platform/NotificationContent.h"
#include "telemetry/ComponentState.h"
#include "telemetry/CPUHistoryPoint.h"
#include "telemetry/MenuBarStats.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// All that telemetry has shown to others up to some moment. The rows' identities, which are new at every
// read, are left out.
struct Outcome {
    SystemSnapshot snapshot{};
    ComponentState systemState = ComponentState::normal;
    MenuBarStats menuBarStats;
    CPUHistoryPoint newestPoint;
    std::vector<NotificationContent> shown;
    std::vector<std::string> printed;

    bool operator==(const Outcome&) const = default;
};

// The names of what differs, and of numbers in the first that are none.
std::set<std::string> differences(const Outcome& a, const Outcome& b);

}  // namespace norvane
