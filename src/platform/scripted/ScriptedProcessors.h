#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "platform/HostCPULoadInfo.h"
#include "platform/ProcessorInfo.h"
#include "platform/scripted/ScriptedTime.h"

namespace norvane {

// Processors that are as busy as a test says and count their ticks, 100 a second, as time passes. They stand
// still while the machine sleeps.
class ScriptedProcessors {
 public:
    explicit ScriptedProcessors(const ScriptedTime& time, std::size_t count = 4);

    // Percent of the time that is spent on programs, from now on: on every processor, or on one.
    void setLoad(double percent);
    void setLoad(std::size_t processor, double percent);
    // Another number of processors. Those that stay go on counting, new ones begin at 0.
    void setCount(std::size_t count);

    HostCPULoadInfo total();
    ProcessorInfo each();

 private:
    struct Processor {
        double loadPercent = 0;
        double busyTicks = 0;
        double idleTicks = 0;
    };
    void catchUp();

    const ScriptedTime& time_;
    MonotonicInstant countedUntil_;
    std::vector<Processor> processors_;
};

}  // namespace norvane
