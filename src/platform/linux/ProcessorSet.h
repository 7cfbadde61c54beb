#pragma once

#include <mutex>
#include <string_view>
#include <vector>

#include "platform/linux/CPUTopology.h"
#include "platform/linux/ProcStat.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// The processors that we know: those online at the first reading of /proc/stat, for good. Those that appear
// later stay out, so that a list of them never changes its length; those switched off for good when the
// system started, as hardware threads often are, never get in. Any thread.
class ProcessorSet {
 public:
    explicit ProcessorSet(RootFolder root) : root_(std::move(root)) {}

    // The first reading, by ascending number: `procStat`, unless there was one before. Null while none has
    // had a processor in it; what is returned stays valid and never changes.
    const std::vector<ProcessorTicks>* fixBy(std::string_view procStat);

    // Reads /proc/stat itself if there was no reading yet, and the kinds of processors at the first call.
    // Null where that fails; what is returned stays valid and never changes.
    const CPUTopology* topology();

 private:
    RootFolder root_;

    std::mutex mutex_;
    std::vector<ProcessorTicks> first_;  // guarded by mutex_ until there is something in it

    std::once_flag topologyOnce_;
    CPUTopology topology_;
};

}  // namespace norvane
