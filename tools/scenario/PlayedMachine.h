#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "scenario/Given.h"
#include "scenario/RunningTotal.h"

namespace norvane {

// A scripted machine whose answers come from the lines of a scenario, under the names of the operations that
// give them, or under a few shorter ones ("load", "memory", "disk").
class PlayedMachine {
 public:
    PlayedMachine();
    PlayedMachine(const PlayedMachine&) = delete;
    PlayedMachine& operator=(const PlayedMachine&) = delete;

    // From now on the machine answers this. False where `name` is no answer of the machine.
    bool answer(std::string_view name, const Given& given);

    ScriptedMachine scripted;

 private:
    struct Answer {
        std::string_view name;
        void (PlayedMachine::*take)(const Given&);
    };
    static const Answer kAnswers[];

    void takeProcessors(const Given& given);
    void takeLoad(const Given& given);
    void takeTicks(const Given& given);
    void takeProcessorTicks(const Given& given);
    void takePages(const Given& given);
    void takePageSize(const Given& given);
    void takeMemory(const Given& given);
    void takeSwapUsage(const Given& given);
    void takePhysicalMemory(const Given& given);
    void takeThermalState(const Given& given);
    void takeUptime(const Given& given);
    void takeLowPowerMode(const Given& given);
    void takeDisk(const Given& given);
    void takeDrivers(const Given& given);
    void takeAccelerators(const Given& given);
    void takeBatteries(const Given& given);
    void takePowerSources(const Given& given);
    void takeVolumes(const Given& given);
    void takePreference(const Given& given);
    void takeNotifications(const Given& given);
    void takeAuthorization(const Given& given);
    bool takeSysctl(std::string_view name, const Given& given);

    // Devices or power sources, each with its properties; without them: they cannot be read. No list: the
    // question for them fails.
    using Sources = std::optional<std::vector<std::optional<PropertyDictionary>>>;
    static void change(Sources& sources, const Given& given);
    void takeServices(RegistryService kind, const Given& given);

    std::optional<VMStatistics64> pages() const;
    std::uint64_t pagesOf(double gigabytes) const;
    ScriptedRegistry::Services countingDrivers() const;

    HostCPULoadInfo ticks_;
    std::uint64_t pageSize_ = 4096;
    VMStatistics64 pages_{.wire_count = 262'144, .active_count = 786'432, .external_page_count = 524'288};
    bool arePagesReadable_ = true;
    RunningTotal swapins_{scripted.time};
    RunningTotal swapouts_{scripted.time};
    XswUsage swapUsage_;
    RunningTotal readBytes_{scripted.time};
    RunningTotal writtenBytes_{scripted.time};
    std::map<RegistryService, Sources> services_;
    Sources powerSources_{std::in_place};
};

}  // namespace norvane
