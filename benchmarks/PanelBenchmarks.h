#pragma once

#include "FigureTable.h"
#include "SampleReporter.h"

namespace norvane {

// What the frames of the dashboard itself cost, with each of its panels: the one after every figure has
// changed, from the change to pixels, and those in between, in which things breathe and slide. Beside copying
// its pixels.
void registerPanelBenchmarks();
void addPanelFigures(const SampleReporter& samples, FigureTable& table);

}  // namespace norvane
