#include "gallery/ShownMachines.h"

#include <chrono>
#include <cmath>
#include <cstdint>

namespace norvane::gallery {
namespace {

constexpr std::uint64_t kGB = 1ULL << 30;
constexpr std::uint64_t kPagesPerGB = kGB / 4096;
constexpr std::int64_t kDiskGB = 1'000'000'000;
constexpr double kMB = 1 << 20;

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

struct Battery {
    std::int64_t fullmAh = 4'800;
    std::int64_t percent = 81;
    std::int64_t cycles = 112;
    double temperatureC = 30.8;
    bool isOnMains = false;
    const char* condition = nullptr;
    std::int64_t minutes = 410;
};

void setBattery(ScriptedMachine& machine, const Battery& battery) {
    machine.registry.services(RegistryService::AppleSmartBattery)
        .always({{RegistryEntry({{"DesignCapacity", 5'100},
                                 {"AppleRawMaxCapacity", battery.fullmAh},
                                 {"AppleRawCurrentCapacity", battery.fullmAh * battery.percent / 100},
                                 {"MaxCapacity", 100},
                                 {"CurrentCapacity", battery.percent},
                                 {"CycleCount", battery.cycles},
                                 {"Temperature", battery.temperatureC * 100},
                                 {"ExternalConnected", battery.isOnMains},
                                 {"IsCharging", false}})}});
    PropertyDictionary source{{"Is Charged", false}, {"Time to Empty", battery.minutes}};
    if (battery.condition != nullptr) source.set("BatteryHealthCondition", std::string(battery.condition));
    machine.powerSources.sources.always({{source}});
}

}  // namespace

void makeIdleLaptop(ScriptedMachine& machine) {
    machine.sysctl.number(SysctlNumber::hw_perflevel0_physicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_perflevel0_logicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_perflevel1_physicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_perflevel1_logicalcpu).always(4);
    machine.sysctl.number(SysctlNumber::hw_logicalcpu).always(8);
    machine.sysctl.text(SysctlText::machdep_cpu_brand_string).always("Mobile Processor 8c");
    machine.sysctl.text(SysctlText::hw_model).always("MacBook");
    machine.hostPort.processors.setCount(8);
    setMemory(machine, {.totalGB = 16, .wiredGB = 1.4, .appGB = 3.1, .cachedGB = 5.2});
    setDisk(machine, "System", 512, 300);
    setBattery(machine, {});
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

void makeLaptopWithSticks(ScriptedMachine& machine) {
    makeIdleLaptop(machine);
    const auto volume = [](const char* path, const char* name, std::int64_t totalGB, std::int64_t freeGB) {
        return VolumeURL(path,
                         VolumeResourceValues{name, totalGB * kDiskGB, freeGB * kDiskGB, false, false, true});
    };
    machine.fileManager.removable.always({{volume("/media/ada/HOLIDAY", "Holiday Pictures", 64, 41),
                                           volume("/media/ada/BACKUP", "BACKUP", 1'100, 40)}});
    machine.workspace.ejectionTime = std::chrono::hours(1);
}

void makeLaptopWithFullDisk(ScriptedMachine& machine) {
    makeIdleLaptop(machine);
    setDisk(machine, "System", 512, 7);
    // Each reading finds 12 MB/s read and 58 MB/s written.
    machine.registry.services(RegistryService::IOBlockStorageDriver).from([&time = machine.time] {
        const double seconds = std::chrono::duration<double>(time.monotonic().time_since_epoch()).count();
        const PropertyDictionary statistics{{"Bytes (Read)", std::floor(seconds * 12.5 * kMB)},
                                            {"Bytes (Write)", std::floor(seconds * 58.5 * kMB)}};
        return ScriptedRegistry::Services({RegistryEntry({{"Statistics", statistics}})});
    });
}

void makeLaptopNearItsEnd(ScriptedMachine& machine) {
    makeIdleLaptop(machine);
    setBattery(machine, {.percent = 7, .minutes = 18});
}

void makeLaptopOnHold(ScriptedMachine& machine) {
    makeIdleLaptop(machine);
    setBattery(machine, {.percent = 80, .isOnMains = true, .minutes = -1});
    machine.processInfo.lowPower.always(true);
}

void makeLaptopWithWornBattery(ScriptedMachine& machine) {
    makeIdleLaptop(machine);
    setBattery(machine, {.fullmAh = 3'250,
                         .percent = 64,
                         .cycles = 1'043,
                         .temperatureC = 43.2,
                         .condition = "Service Recommended",
                         .minutes = 95});
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
