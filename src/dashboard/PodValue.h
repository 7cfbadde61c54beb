#pragma once

#include <string>

#include "telemetry/SystemSnapshot.h"

namespace norvane {

// What a pod says in a few characters: "11.23" "GB used".
struct PodValue {
    std::string value;
    std::string unit;

    bool operator==(const PodValue&) const = default;
};

// A snapshot that is null counts as all zeros.
PodValue cpuPodValue(const SystemSnapshot* snapshot);
PodValue memoryPodValue(const SystemSnapshot* snapshot);
PodValue storagePodValue(const SystemSnapshot* snapshot);

}  // namespace norvane
