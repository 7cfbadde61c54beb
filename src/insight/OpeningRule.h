#pragma once

#include <optional>
#include <string>

#include "insight/SmartPodManager.h"
#include "insight/SnapshotSection.h"
#include "telemetry/SystemSnapshot.h"

namespace norvane {

// Which pod is expanded when the dashboard opens. Asked once for each opening, never while the user reads.
// Main thread only.
class OpeningRule {
 public:
    // The manager outlives the rule.
    explicit OpeningRule(const SmartPodManager& manager) : manager_(&manager) {}

    // The snapshot is the last one published, null before the first. `lastViewedPod` is as it is stored, and
    // may name no pod; then it is the processor's.
    SnapshotSection open(bool isSmartAutoExpandEnabled, const SystemSnapshot* snapshot,
                         const std::optional<std::string>& lastViewedPod);

 private:
    const SmartPodManager* manager_;
    // Of openings while the choice was not the machine's.
    bool hasOpenedBefore_ = false;
};

}  // namespace norvane
