#pragma once

#include <string>

#include "telemetry/SystemSnapshot.h"
#include "views/Paint.h"

namespace norvane {

// The colour of each pod: of its component, or of its trouble. The snapshot is null before the first.
Ink cpuPodColor(const SystemSnapshot* snapshot);
Ink memoryPodColor(const SystemSnapshot* snapshot);
Ink storagePodColor(const SystemSnapshot* snapshot);
Ink batteryPodColor(const SystemSnapshot* snapshot);

// The symbol of the battery's pod.
std::string batteryPodIcon(const SystemSnapshot* snapshot);

}  // namespace norvane
