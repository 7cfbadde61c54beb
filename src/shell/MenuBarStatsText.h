#pragma once

#include <string>

#include "telemetry/MenuBarStats.h"

namespace norvane {

// The label's two values: "42%", and "9.9G", "10G" or "0.5T". Gigabytes of 2^30 bytes.
std::string menuBarCPUText(double cpuPercent);
std::string menuBarRAMText(double ramUsedGB, double ramTotalGB);
// Both in one line, for a panel that shows no more than a picture: "CPU 42%, RAM 9.9G".
std::string menuBarToolTip(const MenuBarStats& stats);

}  // namespace norvane
