#pragma once

#include "FigureTable.h"
#include "SampleReporter.h"

namespace norvane {

// What ticks and parsers cost on machines that are there as files, beside looking at every byte of them, and
// how that grows with the number of processors, drives and mounts.
void registerMachineBenchmarks();
void addMachineFigures(const SampleReporter& samples, FigureTable& table);

}  // namespace norvane
