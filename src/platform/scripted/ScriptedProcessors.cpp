#include "platform/scripted/ScriptedProcessors.h"

#include <cmath>

namespace norvane {
namespace {

constexpr double kTicksPerSecond = 100;

std::uint32_t wrapped(double ticks) {
    return static_cast<std::uint32_t>(static_cast<std::uint64_t>(std::llround(ticks)));
}

}  // namespace

ScriptedProcessors::ScriptedProcessors(const ScriptedTime& time, std::size_t count)
    : time_(time), countedUntil_(time.monotonic()), processors_(count) {}

void ScriptedProcessors::setLoad(double percent) {
    catchUp();
    for (Processor& processor : processors_)
        processor.loadPercent = percent;
}

void ScriptedProcessors::setLoad(std::size_t processor, double percent) {
    catchUp();
    processors_.at(processor).loadPercent = percent;
}

void ScriptedProcessors::setCount(std::size_t count) {
    catchUp();
    processors_.resize(count);
}

HostCPULoadInfo ScriptedProcessors::total() {
    catchUp();
    double busy = 0;
    double idle = 0;
    for (const Processor& processor : processors_) {
        busy += processor.busyTicks;
        idle += processor.idleTicks;
    }
    return {.user = wrapped(busy), .system = 0, .idle = wrapped(idle), .nice = 0};
}

ProcessorInfo ScriptedProcessors::each() {
    catchUp();
    ProcessorInfo info{.processorCount = processors_.size(), .ticks = {}};
    for (const Processor& processor : processors_) {
        for (const std::uint32_t ticks :
             {wrapped(processor.busyTicks), 0U, wrapped(processor.idleTicks), 0U}) {
            info.ticks.push_back(static_cast<std::int32_t>(ticks));
        }
    }
    return info;
}

void ScriptedProcessors::catchUp() {
    const double ticks =
        std::chrono::duration<double>(time_.monotonic() - countedUntil_).count() * kTicksPerSecond;
    countedUntil_ = time_.monotonic();
    for (Processor& processor : processors_) {
        processor.busyTicks += ticks * processor.loadPercent / 100;
        processor.idleTicks += ticks * (1 - processor.loadPercent / 100);
    }
}

}  // namespace norvane
