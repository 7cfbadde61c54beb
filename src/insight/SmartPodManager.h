#pragma once

#include <optional>
#include <string>

#include "platform/Published.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// Knows which pod matters most. One for each main popover, handed to its root view. Main thread only.
class SmartPodManager {
 public:
    // How many evaluations in a row a pod would have to hold, were it to take effect while the user reads. An
    // opening, the only one that asks, takes it at once, so that nothing changes the three values below.
    static constexpr int kRequiredTicks = 3;

    // The raw text of the pod that stands out, from the gravest condition down to mere activity; none where
    // all is calm. Changes nothing.
    std::optional<std::string> evaluate(const SystemSnapshot& snapshot) const;

    const Published<std::optional<std::string>>& activePod() const { return activePod_; }
    const std::optional<std::string>& pendingPod() const { return pendingPod_; }
    int sustainedTicks() const { return sustainedTicks_; }

 private:
    Published<std::optional<std::string>> activePod_;
    std::optional<std::string> pendingPod_;
    int sustainedTicks_ = 0;
};

}  // namespace norvane
