#pragma once

#include "FigureTable.h"
#include "SampleReporter.h"

namespace norvane {

// What the view layer and the painter cost on a screen of the dashboard's kind, beside copying all of its
// pixels.
void registerFrameBenchmarks();
void addFrameFigures(const SampleReporter& samples, FigureTable& table);

}  // namespace norvane
