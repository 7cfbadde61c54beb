#pragma once

#include <optional>

#include "telemetry/DiskSnapshot.h"
#include "views/Paint.h"

namespace norvane {

// How full a disk is: used over total, both in gigabytes; the used ones themselves where the total is 1 or
// less.
double capacityRatio(double usedGB, double totalGB);

// The colour of a disk that is so full: green below 0.7, yellow below 0.85, orange below 0.95, and red; red
// also for what is no part of a whole.
Ink capacityColor(double ratio);

// The colour of a boot volume with so many gigabytes free for what matters: red below 10, orange below 30. No
// colour of its own with more.
std::optional<Ink> scarceRoomColor(double availableGB);

// The colour of a volume by both.
Ink diskColor(const DiskSnapshot& volume);

}  // namespace norvane
