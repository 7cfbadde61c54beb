#pragma once

#include "FigureTable.h"
#include "SampleReporter.h"

namespace norvane {

// What a tick of the sampler costs on this machine, beside reading the same files, and whether it allocates.
void registerTickBenchmarks();
void addTickFigures(const SampleReporter& samples, FigureTable& table);

}  // namespace norvane
