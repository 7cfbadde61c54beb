#pragma once

#include "MedianReporter.h"

namespace norvane {

// Registers what ticks cost on captured machines, whose files lie in memory, so that reading is nearly free
// and what is left is ours: taking the texts apart. Also what the processors, drives and mounts of larger and
// larger servers cost.
void registerMachineBenchmarks();

// Whether all of them keep their bounds; says so.
bool judgeMachineBenchmarks(const MedianReporter& figures);

}  // namespace norvane
