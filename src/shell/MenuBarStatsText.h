#pragma once

#include <string>

namespace norvane {

// The label's two values: "42%", and "9.9G", "10G" or "0.5T". Gigabytes of 2^30 bytes.
std::string menuBarCPUText(double cpuPercent);
std::string menuBarRAMText(double ramUsedGB, double ramTotalGB);

}  // namespace norvane
