#include "shell/MenuBarStatsText.h"

#include "platform/Decimal.h"
#include "telemetry/Units.h"

namespace norvane {

std::string menuBarCPUText(double cpuPercent) {
    return decimal(cpuPercent, 0) + "%";
}

std::string menuBarRAMText(double ramUsedGB, double ramTotalGB) {
    // The machine's size decides the unit, so that it never changes; the value before rounding the digits.
    if (ramTotalGB >= kGBPerTB) return decimal(ramUsedGB / kGBPerTB, 1) + "T";
    if (ramUsedGB >= 10.0) return decimal(ramUsedGB, 0) + "G";
    return decimal(ramUsedGB, 1) + "G";
}

std::string menuBarToolTip(const MenuBarStats& stats) {
    return "CPU " + menuBarCPUText(stats.cpu) + ", RAM " + menuBarRAMText(stats.ramUsed, stats.ramTotal);
}

}  // namespace norvane
