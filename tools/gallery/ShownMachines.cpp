#include "gallery/ShownMachines.h"

#include <cmath>
#include <cstdint>

namespace norvane::gallery {
namespace {

constexpr std::uint64_t kGB = 1ULL << 30;
constexpr std::uint64_t kPagesPerGB = kGB / 4096;
constexpr std::int64_t kDiskGB = 1'000'000'000;

struct Memory {
    double totalGB = 16;
    double wiredGB = 1;
    double appGB = 3;
    double compressedGB = 0;
    double cachedGB = 4;
    double swapGB = 0;
};

void setMemory(ScriptedMachine& machine, const Memory& memory) {
    const auto pages = [](double gigabytes) {
        return static_cast<std::uint64_t>(gigabytes * static_cast<double>(kPagesPerGB));
    };
    const auto bytes = [](double gigabytes) {
        return static_cast<std::uint64_t>(gigabytes * static_cast<double>(kGB));
    };
    machine.processInfo.memory.always(bytes(memory.totalGB));
    machine.hostPort.statistics64.always(VMStatistics64{.wire_count = pages(memory.wiredGB),
                                                        .active_count = pages(memory.appGB),
                                                        .compressor_page_count = pages(memory.compressedGB),
                                                        .external_page_count = pages(memory.cachedGB)});
    machine.sysctl.swapUsage.always(XswUsage{bytes(32), bytes(32 - memory.swapGB), bytes(memory.swapGB)});
}

void setDisk(ScriptedMachine& machine, const char* name, std::int64_t totalGB, std::int64_t freeGB) {
    machine.fileManager.volumes.always(
        {{{"/", VolumeResourceValues{name, totalGB * kDiskGB, freeGB * kDiskGB, true, true, false}}}});
}

}  // namespace

void makeIdleLaptop(ScriptedMachine& machine) {
    machine.sysctl.number(SysctlNumber::hw_perflevel0_physicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_perflevel0_logicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_perflevel1_physicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_perflevel1_logicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_logicalcpu).always(8);
    machine.sysctl.text(SysctlText::machdep_cpu_brand_string).always("Mobile Processor 8c");
    machine.hostPort.processors.setCount(8);
    setMemory(machine, {.totalGB = 16, .wiredGB = 1.4, .appGB = 3.1, .cachedGB = 5.2});
    setDisk(machine, "System", 512, 300);
    machine.registry.services(RegistryService::AppleSmartBattery)
        .always({{RegistryEntry({{"DesignCapacity", 5'100},
                                 {"AppleRawMaxCapacity", 4'800},
                                 {"AppleRawCurrentCapacity", 3'900},
                                 {"MaxCapacity", 100},
                                 {"CurrentCapacity", 81},
                                 {"CycleCount", 112},
                                 {"Temperature", 3'080},
                                 {"ExternalConnected", false},
                                 {"IsCharging", false}})}});
    machine.powerSources.sources.always(
        {{PropertyDictionary{{"Is Charged", false}, {"Time to Empty", 410}}}});
}

void makeLoadedDesktop(ScriptedMachine& machine) {
    machine.sysctl.number(SysctlNumber::hw_logicalcpu).always(12);
    machine.sysctl.text(SysctlText::machdep_cpu_brand_string).always("Desktop Processor 12-Core");
    machine.hostPort.processors.setCount(12);
    setMemory(
        machine,
        {.totalGB = 32, .wiredGB = 5.5, .appGB = 20.3, .compressedGB = 4.1, .cachedGB = 1.2, .swapGB = 6.4});
    machine.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
    setDisk(machine, "System", 2'000, 160);
}

void makeServer(ScriptedMachine& machine) {
    machine.sysctl.number(SysctlNumber::hw_logicalcpu).always(64);
    machine.sysctl.text(SysctlText::machdep_cpu_brand_string).always("Server Processor 64-Core");
    machine.hostPort.processors.setCount(64);
    setMemory(machine, {.totalGB = 1'536, .wiredGB = 42, .appGB = 610, .cachedGB = 480});
    setDisk(machine, "System", 8'000, 5'200);
}

void liveAMinute(ScriptedMachine& machine, const Load& load) {
    for (int second = 0; second < 62; ++second) {
        for (std::size_t i = 0; i < load.processors; ++i) {
            const double phase = 0.23 * second + 1.7 * static_cast<double>(i);
            const double own = load.middle + load.swing * std::sin(phase) * std::cos(0.11 * second);
            machine.hostPort.processors.setLoad(i, std::fmin(std::fmax(own, 0), 100));
        }
        machine.advance(std::chrono::seconds(1));
    }
}

}  // namespace norvane::gallery
