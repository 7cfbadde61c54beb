#pragma once

#include <chrono>

#include "platform/ProcessInfo.h"
#include "platform/scripted/ScriptedAnswer.h"
#include "platform/scripted/ScriptedTime.h"

namespace norvane {

// A cool machine of 16 GiB, until told otherwise.
class ScriptedProcessInfo final : public ProcessInfo {
 public:
    explicit ScriptedProcessInfo(const ScriptedTime& time) {
        uptime.from([&time] { return std::chrono::duration<double>(time.uptime()).count(); });
    }

    std::uint64_t physicalMemory(TickToken) override { return memory.ask(); }
    int thermalState(TickToken) override { return thermal.ask(); }
    double systemUptime() override { return uptime.ask(); }
    bool isLowPowerModeEnabled() override { return lowPower.ask(); }

    ScriptedAnswer<std::uint64_t> memory{std::uint64_t{16} << 30};
    ScriptedAnswer<int> thermal{0};
    ScriptedAnswer<double> uptime{0};
    ScriptedAnswer<bool> lowPower{false};
};

}  // namespace norvane
