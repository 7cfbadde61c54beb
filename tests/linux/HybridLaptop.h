#pragma once

#include <string>

#include "TemporaryFolder.h"

namespace norvane {

// Adds the processors of a laptop with 8 performance cores of two threads each, numbered 0 to 15, and 16
// efficiency cores, numbered 16 to 31, and their line in /proc/stat.
inline void addHybridProcessors(const TemporaryFolder& machine) {
    std::string stat = "cpu  3200 0 1600 320000 0 0 0 0 0 0\n";
    for (int n = 0; n < 32; ++n) {
        stat += "cpu" + std::to_string(n) + " " + std::to_string(100 + n) + " 0 50 10000 0 0 0 0 0 0\n";
        const std::string topology = "/sys/devices/system/cpu/cpu" + std::to_string(n) + "/topology/";
        machine.write(topology + "physical_package_id", "0\n");
        machine.write(topology + "die_id", "0\n");
        // Four efficiency cores share a cluster; performance cores have one each.
        machine.write(topology + "cluster_id",
                      std::to_string(n < 16 ? n / 2 * 8 : 64 + (n - 16) / 4 * 8) + "\n");
        machine.write(topology + "core_id", std::to_string(n < 16 ? n / 2 * 4 : 32 + n - 16) + "\n");
    }
    machine.write("/proc/stat", stat + "intr 1 2 3\nctxt 4\n");
    machine.write("/sys/devices/cpu_core/cpus", "0-15\n");
    machine.write("/sys/devices/cpu_atom/cpus", "16-31\n");
}

}  // namespace norvane
