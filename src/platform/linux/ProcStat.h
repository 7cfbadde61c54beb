#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/CPUTicks.h"

namespace norvane {

// What /proc/stat says about processor time (proc_stat(5)). Time stolen by a hypervisor counts nowhere: it is
// neither busy nor idle. Guest time is already inside user and nice, waiting for a disk is idle time.

struct ProcessorTicks {
    unsigned number = 0;
    CPUTicks ticks;

    bool operator==(const ProcessorTicks&) const = default;
};

// The line of the whole machine; none where it is missing or has fewer than its first four numbers.
std::optional<CPUTicks> parseMachineTicks(std::string_view procStat);

// The lines of the processors, which are those online. Malformed lines are left out. What `processors` held
// is replaced; its memory is used again.
void parseProcessorTicks(std::string_view procStat, std::vector<ProcessorTicks>& processors);

}  // namespace norvane
