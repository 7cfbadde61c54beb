#pragma once

#include "telemetry/SystemSnapshot.h"
#include "views/Paint.h"

namespace norvane {

// The colour of each pod: of its component, or of its trouble. The snapshot is null before the first.
Ink cpuPodColor(const SystemSnapshot* snapshot);
Ink memoryPodColor(const SystemSnapshot* snapshot);
Ink storagePodColor(const SystemSnapshot* snapshot);
Ink batteryPodColor(const SystemSnapshot* snapshot);

}  // namespace norvane
