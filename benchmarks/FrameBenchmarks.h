#pragma once

#include "MedianReporter.h"

namespace norvane {

// Registers what the frames of a screen of the dashboard's size cost, from a change to pixels, beside a mere
// copy of as many pixels.
void registerFrameBenchmarks();

// Whether all of them keep their bounds; says so.
bool judgeFrameBenchmarks(const MedianReporter& figures);

}  // namespace norvane
