#pragma once

#include <chrono>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Platform.h"
#include "preferences/DefaultsKeys.h"
#include "telemetry/FaultyOperation.h"

// How each operation of the platform goes wrong, and what is seen of it on the laptop of the tests:
// everything that is not named stays as it is. The laptop's numbers stand with it.
namespace norvane {

inline constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
inline constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
inline constexpr std::uint64_t kAllOnes = std::numeric_limits<std::uint64_t>::max();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInfinity = std::numeric_limits<double>::infinity();
inline constexpr std::size_t kMany = 4'000;

// A megabyte of what is no UTF-8.
inline std::string hugeText() {
    return std::string(std::size_t{1} << 20, '\xFF');
}

// And what is shown of it.
inline std::string hugeRepairedText() {
    std::string text;
    for (std::size_t i = hugeText().size(); i > 0; --i)
        text += "\uFFFD";
    return text;
}

// Whatever a healthy one would answer.
template <typename Value>
auto always(Value value) {
    return [value = std::move(value)](const auto&) { return value; };
}

template <typename Element>
std::vector<Element> manyOf(const std::vector<Element>& elements) {
    std::vector<Element> many;
    while (many.size() < kMany)
        many.insert(many.end(), elements.begin(), elements.end());
    return many;
}

inline void takeBack(Outcome& o, std::string_view title) {
    std::erase_if(o.shown, [&](const NotificationContent& content) { return content.title == title; });
}

// --- HostPort

// No share of the whole machine can be worked out. The memory and the heat keep the system critical.
inline void noTotalCPU(Outcome& o) {
    SystemSnapshot& s = o.snapshot;
    s.cpuUsagePercent = s.cpuSustained = o.menuBarStats.cpu = o.newestPoint.total = 0;
    s.cpuState = ComponentState::normal;
    s.isCPUModerateLoad = false;
    takeBack(o, "CPU Sustained Load");
}

template <>
struct FaultsOf<&HostPort::host_statistics> {
    static constexpr const char* kName = "host_statistics";
    static std::vector<Fault<std::optional<HostCPULoadInfo>>> faults() {
        const auto backwards = [](const auto& healthy) {
            return HostCPULoadInfo{0 - healthy->user, 0 - healthy->system, 0 - healthy->idle,
                                   0 - healthy->nice};
        };
        return {{"fails", always(std::nullopt), noTotalCPU},
                {"stands at 0", always(HostCPULoadInfo()), noTotalCPU},
                {"stands at the top", always(HostCPULoadInfo{UINT_MAX, UINT_MAX, UINT_MAX, UINT_MAX}),
                 noTotalCPU},
                {"counts backwards", backwards, noTotalCPU}};
    }
};

inline void setCores(Outcome& o, std::vector<double> efficiency, std::vector<double> performance) {
    SystemSnapshot& s = o.snapshot;
    const auto mean = [](const std::vector<double>& usages) {
        double sum = 0;
        for (const double usage : usages)
            sum += usage;
        return usages.empty() ? 0 : sum / static_cast<double>(usages.size());
    };
    s.efficiencyCoreUsage = o.newestPoint.efficiency = mean(efficiency);
    s.performanceCoreUsage = o.newestPoint.performance = mean(performance);
    s.isPCoreActive = s.performanceCoreUsage >= 50;
    s.isPCoreSaturated = s.performanceCoreUsage >= 85;
    s.efficiencyCoreUsages = std::move(efficiency);
    s.performanceCoreUsages = std::move(performance);
}
inline void noCores(Outcome& o) {
    setCores(o, {}, {});
    o.snapshot.idlePercent = 0;
}
inline void standingCores(Outcome& o) {
    setCores(o, {0, 0, 0, 0}, {0, 0, 0, 0});
    o.snapshot.idlePercent = 0;
}

template <>
struct FaultsOf<&HostPort::host_processor_info> {
    static constexpr const char* kName = "host_processor_info";
    static std::vector<Fault<std::optional<ProcessorInfo>>> faults() {
        const auto changed = [](auto change) {
            return [change](const std::optional<ProcessorInfo>& healthy) {
                ProcessorInfo info = *healthy;
                change(info);
                return info;
            };
        };
        const auto all = [&](std::int32_t ticks) {
            return changed([ticks](ProcessorInfo& info) { info.ticks.assign(info.ticks.size(), ticks); });
        };
        return {{"fails", always(std::nullopt), noCores},
                {"has no processors", always(ProcessorInfo()), noCores},
                {"counts processors and tells nothing of them", always(ProcessorInfo{8, {}}), noCores},
                {"stands at 0", all(0), standingCores},
                {"stands at -1", all(-1), standingCores},
                {"stands at the top", all(INT_MAX), standingCores},
                {"has a part of one processor", changed([](auto& info) { info.ticks.resize(3); }), noCores},
                {"boasts of its processors", changed([](auto& info) { info.processorCount = SIZE_MAX; }), {}},
                {"denies its processors", changed([](auto& info) { info.processorCount = 0; }), noCores},
                {"has very many processors", changed([](ProcessorInfo& info) {
                     info.ticks = manyOf(info.ticks);
                     info.processorCount = info.ticks.size() / 4;
                 }),
                 [](Outcome& o) {
                     std::vector<double> performance;
                     for (std::size_t i = 4; i < kMany / 4; ++i)
                         performance.push_back(i % 8 < 4 ? 100 : 88);
                     setCores(o, o.snapshot.efficiencyCoreUsages, performance);
                 }}};
    }
};

inline void setPages(Outcome& o, double wired, double app, double compressed, double cached) {
    SystemSnapshot& s = o.snapshot;
    s.wiredMemoryGB = wired;
    s.appMemoryGB = app;
    s.compressedMemoryGB = compressed;
    s.usedMemoryGB = o.menuBarStats.ramUsed = wired + app + compressed;
    s.cachedFilesGB = cached;
    s.isMemoryHighlyCompressed = compressed > 0;
    s.isMemoryCachingActive = cached > 0;
}
inline void setSwapRates(Outcome& o, double read, double write) {
    o.snapshot.swapReadMBps = read;
    o.snapshot.swapWriteMBps = write;
    o.snapshot.isMemoryThrashing = read > 0;
}
inline void setSwapUsed(Outcome& o, double gigabytes) {
    o.snapshot.swapUsedGB = gigabytes;
    o.snapshot.isMemorySwapHigh = gigabytes > 0;
}

template <>
struct FaultsOf<&HostPort::host_statistics64> {
    static constexpr const char* kName = "host_statistics64";
    static std::vector<Fault<std::optional<VMStatistics64>>> faults() {
        return {{"fails", always(std::nullopt),
                 [](Outcome& o) {
                     setPages(o, 0, 0, 0, 0);
                     setSwapRates(o, 0, 0);
                     setSwapUsed(o, 0);
                 }},
                {"is all 0", always(VMStatistics64()),
                 [](Outcome& o) {
                     setPages(o, 0, 0, 0, 0);
                     setSwapRates(o, 0, 0);
                 }},
                {"is all ones",
                 always(VMStatistics64{kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes, kAllOnes}),
                 [](Outcome& o) {
                     setPages(o, 0x1p46, 0x1p46, 0x1p46, 0x1p47);
                     setSwapRates(o, 0, 0);
                 }},
                {"counts swapped pages backwards",
                 [](const auto& healthy) {
                     VMStatistics64 statistics = *healthy;
                     statistics.swapins = kAllOnes - statistics.swapins;
                     statistics.swapouts = kAllOnes - statistics.swapouts;
                     return statistics;
                 },
                 [](Outcome& o) { setSwapRates(o, 0, 0); }}};
    }
};

template <>
struct FaultsOf<&HostPort::host_page_size> {
    static constexpr const char* kName = "host_page_size";
    static std::vector<Fault<std::uint64_t>> faults() {
        const auto scaled = [](double factor) {
            return [factor](Outcome& o) {
                const SystemSnapshot s = o.snapshot;
                setPages(o, s.wiredMemoryGB * factor, s.appMemoryGB * factor, s.compressedMemoryGB * factor,
                         s.cachedFilesGB * factor);
                setSwapRates(o, s.swapReadMBps * factor, s.swapWriteMBps * factor);
            };
        };
        return {{"is 0", always(0), scaled(0)}, {"is all ones", always(kAllOnes), scaled(0x1p64 / 4096)}};
    }
};

// --- Sysctl

// The operation has a second form.
inline constexpr auto kSysctlNumber =
    static_cast<std::optional<std::int64_t> (Sysctl::*)(SysctlNumber, TickToken)>(&Sysctl::sysctlbyname);
inline constexpr auto kSysctlText =
    static_cast<std::optional<std::string> (Sysctl::*)(SysctlText)>(&Sysctl::sysctlbyname);

template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::hw_perflevel0_physicalcpu> {
    static constexpr const char* kName = "hw.perflevel0.physicalcpu";
    static constexpr const char* kWhyNotAsked = "for display: asked when the application comes up";
};
template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::hw_perflevel1_physicalcpu> {
    static constexpr const char* kName = "hw.perflevel1.physicalcpu";
    static constexpr const char* kWhyNotAsked = "for display: asked when the application comes up";
};

using NumberFaults = std::vector<Fault<std::optional<std::int64_t>>>;

// It counts the zeros of a first reading, and decides nothing later.
template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::hw_perflevel0_logicalcpu> {
    static constexpr const char* kName = "hw.perflevel0.logicalcpu";
    static NumberFaults faults() {
        return {{"fails", always(std::nullopt), {}},
                {"is 0", always(0), {}},
                {"is -1", always(-1), {}},
                {"is the most", always(kMost), {}},
                {"is the least", always(kLeast), {}}};
    }
};
template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::hw_logicalcpu> {
    static constexpr const char* kName = "hw.logicalcpu";
    static NumberFaults faults() {
        return FaultsOf<kSysctlNumber, SysctlNumber::hw_perflevel0_logicalcpu>::faults();
    }
};
template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::hw_perflevel1_logicalcpu> {
    static constexpr const char* kName = "hw.perflevel1.logicalcpu";
    static NumberFaults faults() {
        const std::vector<double> both{100, 100, 100, 100, 88, 88, 88, 88};
        const auto allPerformance = [both](Outcome& o) { setCores(o, {}, both); };
        return {{"fails", always(std::nullopt), allPerformance, true},
                {"is 0", always(0), allPerformance, true},
                {"is -1", always(-1), allPerformance, true},
                {"is the least", always(kLeast), allPerformance, true},
                {"is the most", always(kMost),
                 [both](Outcome& o) {
                     setCores(o, both, {});
                     o.snapshot.isAppleSiliconOptimized = true;
                 },
                 true}};
    }
};

template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::hw_optional_arm64> {
    static constexpr const char* kName = "hw.optional.arm64";
    static NumberFaults faults() {
        const auto isNot = [](Outcome& o) { o.snapshot.isAppleSilicon = false; };
        return {{"fails", always(std::nullopt), isNot, true},
                {"is 0", always(0), isNot, true},
                {"is -1", always(-1), isNot, true},
                {"is the most", always(kMost), isNot, true}};
    }
};

template <>
struct FaultsOf<kSysctlNumber, SysctlNumber::kern_memorystatus_vm_pressure_level> {
    static constexpr const char* kName = "kern.memorystatus_vm_pressure_level";
    static NumberFaults faults() {
        const auto calm = [](std::int64_t level) {
            return [level](Outcome& o) {
                o.snapshot.memoryPressure = level;
                o.snapshot.memoryState = ComponentState::normal;
                takeBack(o, "Memory Sustained Load");
            };
        };
        return {{"fails", always(std::nullopt), calm(1)},
                {"is 0", always(0), calm(0)},
                {"is -1", always(-1), calm(-1)},
                {"is the least", always(kLeast), calm(kLeast)},
                {"is the most", always(kMost), [](Outcome& o) { o.snapshot.memoryPressure = kMost; }}};
    }
};

template <>
struct FaultsOf<kSysctlText, SysctlText::hw_model> {
    static constexpr const char* kName = "hw.model";
    static std::vector<Fault<std::optional<std::string>>> faults() {
        const auto named = [](const char* name, const char* icon) {
            return [name, icon](Outcome& o) {
                o.snapshot.deviceModelName = name;
                o.snapshot.deviceModelIcon = icon;
            };
        };
        const auto unknown = named("Mac", "applelogo");
        return {{"fails", always(std::nullopt), unknown, true},
                {"is empty", always(std::string()), unknown, true},
                {"begins with a NUL", always(std::string("\0iMac", 5)), unknown, true},
                {"is no text", always(std::string("\xFF\xC3")), unknown, true},
                {"is huge", always(hugeText()), unknown, true},
                {"is huge and of use", always(hugeText() + "iMac"), named("iMac", "desktopcomputer"), true}};
    }
};
template <>
struct FaultsOf<kSysctlText, SysctlText::machdep_cpu_brand_string> {
    static constexpr const char* kName = "machdep.cpu.brand_string";
    static constexpr const char* kWhyNotAsked = "for display: asked when the application comes up";
};

template <>
struct FaultsOf<&Sysctl::sysctlbyname_vm_swapusage> {
    static constexpr const char* kName = "vm.swapusage";
    static std::vector<Fault<std::optional<XswUsage>>> faults() {
        return {{"fails", always(std::nullopt), [](Outcome& o) { setSwapUsed(o, 0); }},
                {"is all 0", always(XswUsage()), [](Outcome& o) { setSwapUsed(o, 0); }},
                {"is all ones", always(XswUsage{kAllOnes, kAllOnes, kAllOnes}),
                 [](Outcome& o) { setSwapUsed(o, 0x1p34); }}};
    }
};

// --- ProcessInfo

template <>
struct FaultsOf<&ProcessInfo::physicalMemory> {
    static constexpr const char* kName = "physicalMemory";
    static std::vector<Fault<std::uint64_t>> faults() {
        const auto total = [](double gigabytes, bool isScarce) {
            return [gigabytes, isScarce](Outcome& o) {
                o.snapshot.totalMemoryGB = o.menuBarStats.ramTotal = gigabytes;
                o.snapshot.isMemoryHighlyCompressed = o.snapshot.isMemoryCachingActive = isScarce;
            };
        };
        return {{"is 0", always(0), total(0, false)},
                {"is 1", always(1), total(0x1p-30, true)},
                {"is all ones", always(kAllOnes), total(0x1p34, false)}};
    }
};

template <>
struct FaultsOf<&ProcessInfo::thermalState> {
    static constexpr const char* kName = "thermalState";
    static std::vector<Fault<int>> faults() {
        const auto nominal = [](Outcome& o) { o.snapshot.thermalLevel = ThermalLevel::nominal; };
        return {{"is 4", always(4), nominal},
                {"is -1", always(-1), nominal},
                {"is the most", always(INT_MAX), nominal},
                {"is the least", always(INT_MIN), nominal}};
    }
};

template <>
struct FaultsOf<&ProcessInfo::systemUptime> {
    static constexpr const char* kName = "systemUptime";
    static std::vector<Fault<double>> faults() {
        const auto is = [](double seconds) { return [seconds](Outcome& o) { o.snapshot.uptime = seconds; }; };
        return {{"is 0", always(0), is(0)},
                {"is -1", always(-1), is(0)},
                {"is 2^63", always(0x1p63), is(0x1p63)},
                {"is not a number", always(kNaN), is(0)},
                {"is infinite", always(kInfinity), is(0)},
                {"is infinitely negative", always(-kInfinity), is(0)}};
    }
};

template <>
struct FaultsOf<&ProcessInfo::isLowPowerModeEnabled> {
    static constexpr const char* kName = "isLowPowerModeEnabled";
    static constexpr const char* kWhyNotAsked = "asked by what is drawn, at every evaluation";
};

// --- Registry

using ServicesFaults = std::vector<Fault<std::optional<std::vector<RegistryEntry>>>>;
using Services = std::vector<RegistryEntry>;

// One service with this property alone, a dictionary in which each of the names has the value.
inline Services serviceWith(const char* property, const std::vector<const char*>& names,
                            const PropertyValue& value) {
    PropertyDictionary dictionary;
    for (const char* const name : names)
        dictionary.set(name, value);
    return {RegistryEntry({{property, std::move(dictionary)}})};
}

// The ways in which every kind of service can tell nothing.
inline ServicesFaults silentServices(const char* property, const std::function<void(Outcome&)>& effect) {
    return {
        {"fails", always(std::nullopt), effect},
        {"has none", always(Services()), effect},
        {"has an unreadable one", always(Services{RegistryEntry::unreadable()}), effect},
        {"has very many unreadable ones", always(Services(kMany, RegistryEntry::unreadable())), effect},
        {"has an empty one", always(Services{RegistryEntry(PropertyDictionary())}), effect},
        {"has an empty dictionary", always(serviceWith(property, {}, 0)), effect},
        {"has a text for a dictionary", always(Services{RegistryEntry({{property, hugeText()}})}), effect}};
}

inline void setDrives(Outcome& o, double factor) {
    o.snapshot.diskReadMBps *= factor;
    o.snapshot.diskWriteMBps *= factor;
    o.snapshot.isStorageHeavyIO = factor > 0;
}

template <>
struct FaultsOf<&Registry::IOServiceGetMatchingServices, RegistryService::IOBlockStorageDriver> {
    static constexpr const char* kName = "IOBlockStorageDriver";
    static ServicesFaults faults() {
        const auto none = [](Outcome& o) { setDrives(o, 0); };
        ServicesFaults faults = silentServices("Statistics", none);
        for (const PropertyValue& value :
             {PropertyValue(0), PropertyValue(-1), PropertyValue(kMost), PropertyValue(kLeast),
              PropertyValue(kAllOnes), PropertyValue(kNaN), PropertyValue(kInfinity), PropertyValue(true),
              PropertyValue(hugeText())}) {
            faults.push_back({"counts nonsense",
                              always(serviceWith("Statistics", {"Bytes (Read)", "Bytes (Write)"}, value)),
                              none});
        }
        faults.push_back({"has an unreadable one, too",
                          [](const auto& healthy) {
                              Services services = *healthy;
                              services.insert(services.begin(), RegistryEntry::unreadable());
                              return services;
                          },
                          {}});
        faults.push_back({"has very many", [](const auto& healthy) { return manyOf(*healthy); },
                          [](Outcome& o) { setDrives(o, static_cast<double>(kMany)); }});
        return faults;
    }
};

inline std::function<void(Outcome&)> gpuUsage(double percent) {
    return [percent](Outcome& o) {
        o.snapshot.gpuUsage = percent;
        o.snapshot.isGPUActive = o.snapshot.isGPUHigh = o.snapshot.isGPUSaturated = percent > 0;
    };
}

template <>
struct FaultsOf<&Registry::IOServiceGetMatchingServices, RegistryService::IOAccelerator> {
    static constexpr const char* kName = "IOAccelerator";
    static ServicesFaults faults() {
        const auto telling = [](const PropertyValue& value) {
            return always(
                serviceWith("PerformanceStatistics", {"Device Utilization %", "GPU Activity(%)"}, value));
        };
        ServicesFaults faults = silentServices("PerformanceStatistics", gpuUsage(0));
        faults.insert(faults.end(),
                      {{"is 0", telling(0), gpuUsage(0)},
                       {"is -1", telling(-1), gpuUsage(-1)},
                       {"is the most", telling(kMost), gpuUsage(0x1p63)},
                       {"is not a number", telling(kNaN), gpuUsage(0)},
                       {"is infinite", telling(kInfinity), gpuUsage(0)},
                       {"is a fraction", telling(90.5), gpuUsage(0)},
                       {"is a text", telling(hugeText()), gpuUsage(0)},
                       {"is a dictionary", telling(PropertyDictionary()), gpuUsage(0)},
                       {"has very many", [](const auto& healthy) { return manyOf(*healthy); }, {}}});
        return faults;
    }
};

// The registry tells nothing of a battery that is there.
inline void silentBattery(Outcome& o) {
    SystemSnapshot& s = o.snapshot;
    s.batteryDesignCapacitymAh = s.batteryMaxCapacitymAh = s.batteryCurrentCapacitymAh = s.batteryCycleCount =
        std::nullopt;
    s.batteryTemperatureC = std::nullopt;
    s.isBatteryWarm = false;
    s.batteryPercentage = 100;
    s.isCharging = true;
    takeBack(o, "Battery Warning");
}
inline void pluggedIn(Outcome& o) {
    silentBattery(o);
    o.snapshot.isOnBattery = false;
    o.snapshot.batteryTimeRemaining = "Fully Charged";
}
inline void noBattery(Outcome& o) {
    pluggedIn(o);
    o.snapshot.hasBattery = false;
    o.snapshot.batteryHealthCondition = std::nullopt;
}

template <>
struct FaultsOf<&Registry::IOServiceGetMatchingServices, RegistryService::AppleSmartBattery> {
    static constexpr const char* kName = "AppleSmartBattery";
    static ServicesFaults faults() {
        const auto everything = [](const PropertyValue& value) {
            PropertyDictionary properties;
            for (const char* const name :
                 {"DesignCapacity", "AppleRawMaxCapacity", "AppleRawCurrentCapacity", "MaxCapacity",
                  "CurrentCapacity", "CycleCount", "Temperature", "ExternalConnected", "IsCharging"}) {
                properties.set(name, value);
            }
            return always(Services{RegistryEntry(std::move(properties))});
        };
        const auto numbers = [](std::int64_t number) {
            return [number](Outcome& o) {
                number == 0 ? silentBattery(o) : pluggedIn(o);
                SystemSnapshot& s = o.snapshot;
                s.batteryDesignCapacitymAh = s.batteryMaxCapacitymAh = s.batteryCurrentCapacitymAh =
                    s.batteryCycleCount = number;
                s.batteryTemperatureC = static_cast<double>(number) / 100;
                s.isBatteryWarm = number > 0;
            };
        };
        return {{"fails", always(std::nullopt), noBattery},
                {"has none", always(Services()), noBattery},
                {"cannot be read", always(Services{RegistryEntry::unreadable()}), silentBattery},
                {"is empty", always(Services{RegistryEntry(PropertyDictionary())}), silentBattery},
                {"is texts", everything(hugeText()), silentBattery},
                {"is dictionaries", everything(PropertyDictionary()), silentBattery},
                {"is all 0", everything(0), numbers(0)},
                {"is all -1", everything(-1), numbers(-1)},
                {"is all the most", everything(kMost), numbers(kMost)},
                // By its truth, what is not zero is connected.
                {"is not numbers", everything(kNaN), pluggedIn},
                {"is infinite", everything(kInfinity), pluggedIn},
                {"has very many", [](const auto& healthy) { return manyOf(*healthy); }, {}}};
    }
};

// --- PowerSources

template <>
struct FaultsOf<&PowerSources::IOPSCopyPowerSourcesInfo> {
    static constexpr const char* kName = "IOPSCopyPowerSourcesInfo";
    using Sources = std::vector<PowerSourceDescription>;
    static std::vector<Fault<std::optional<Sources>>> faults() {
        const auto tells = [](const char* time, std::optional<std::string> condition) {
            return [time, condition = std::move(condition)](Outcome& o) {
                o.snapshot.batteryTimeRemaining = time;
                o.snapshot.batteryHealthCondition = condition;
            };
        };
        const auto nothing = tells("—", std::nullopt);
        const auto all = [](const PropertyValue& value) {
            return always(Sources{PropertyDictionary{{"Is Charged", value},
                                                     {"Time to Empty", value},
                                                     {"Time to Full Charge", value},
                                                     {"BatteryHealthCondition", value}}});
        };
        return {{"fails", always(std::nullopt), nothing},
                {"has none", always(Sources()), nothing},
                {"cannot be read", always(Sources{std::nullopt}), nothing},
                {"has very many that cannot be read", always(Sources(kMany, std::nullopt)), nothing},
                {"is empty", always(Sources{PropertyDictionary()}), tells("Estimating…", std::nullopt)},
                {"is Booleans", all(true), tells("Estimating…", std::nullopt)},
                {"is dictionaries", all(PropertyDictionary()), tells("Estimating…", std::nullopt)},
                {"is all 0", all(0), tells("0m remaining", std::nullopt)},
                {"is all -1", all(-1), tells("Estimating…", std::nullopt)},
                {"is all the most", all(kMost), tells("153722867280912930h 7m remaining", std::nullopt)},
                {"is not numbers", all(kNaN), tells("Estimating…", std::nullopt)},
                {"is infinite", all(kInfinity), tells("Estimating…", std::nullopt)},
                {"is huge texts", all(hugeText()), tells("Estimating…", hugeRepairedText())},
                {"has very many", [](const auto& healthy) { return manyOf(*healthy); }, {}}};
    }
};

// --- FileManager

// One volume stands in for the boot volume, or none does.
inline void setVolumes(Outcome& o, std::vector<DiskSnapshot> volumes, bool isLow, bool isFilling) {
    SystemSnapshot& s = o.snapshot;
    s.usedDiskGB = volumes.empty() ? 0 : volumes[0].usedGB;
    s.totalDiskGB = volumes.empty() ? 0 : volumes[0].totalGB;
    s.isStorageCritical = s.isStorageLow = isLow;
    s.isStorageFilling = isFilling;
    s.volumes = std::move(volumes);
    if (!isLow) takeBack(o, "Storage Warning");
}

// The operation has a second form.
inline constexpr auto kVolumesOfTick =
    static_cast<std::optional<std::vector<VolumeURL>> (FileManager::*)(TickToken)>(
        &FileManager::mountedVolumeURLs);
inline constexpr auto kVolumesNow =
    static_cast<std::optional<std::vector<VolumeURL>> (FileManager::*)()>(&FileManager::mountedVolumeURLs);

template <>
struct FaultsOf<kVolumesNow> {
    static constexpr const char* kName = "mountedVolumeURLs, now";
    static constexpr const char* kWhyNotAsked = "asked by the list of removable volumes";
};
template <>
struct FaultsOf<kVolumesOfTick> {
    static constexpr const char* kName = "mountedVolumeURLs";
    using URLs = std::vector<VolumeURL>;
    static std::vector<Fault<std::optional<URLs>>> faults() {
        const auto none = [](Outcome& o) { setVolumes(o, {}, false, false); };
        const auto root = [](std::optional<std::int64_t> total, std::int64_t available) {
            VolumeResourceValues values;
            values.volumeTotalCapacity = total;
            values.volumeAvailableCapacity = available;
            values.volumeIsRootFileSystem = true;
            return always(URLs{{"/", values}});
        };
        const auto seen = [](double usedGB, double totalGB, double freeGB, bool isLow, bool isFilling) {
            return [=](Outcome& o) {
                setVolumes(o, {{{}, "/", usedGB, totalGB, false, true, freeGB}}, isLow, isFilling);
            };
        };
        const auto named = [](const std::string& name) {
            return [name](const std::optional<URLs>& healthy) {
                URLs urls;
                for (const VolumeURL& url : *healthy) {
                    VolumeResourceValues values = *url.resourceValues();
                    values.volumeName = name;
                    urls.emplace_back(url.path(), values);
                }
                return urls;
            };
        };
        const double most = 0x1p63 / 1e9;
        return {{"fails", always(std::nullopt), none},
                {"has none", always(URLs()), none},
                {"cannot be read", always(URLs{{"/", std::nullopt}}), none},
                {"has very many that cannot be read", always(URLs(kMany, {"/", std::nullopt})), none},
                {"is empty", always(URLs{{"/", VolumeResourceValues()}}), none},
                {"has no total", root(std::nullopt, 9), none},
                {"is all 0", root(0, 0), seen(0, 0, 0, true, false)},
                {"is all -1", root(-1, -1), seen(0, -1e-9, -1e-9, true, false)},
                {"is all the most", root(kMost, kMost), seen(0, most, most, false, false)},
                {"is the most, and less than empty", root(kMost, -1), seen(most, most, -1e-9, true, true)},
                {"has huge names that are no texts", named(hugeText()),
                 [](Outcome& o) {
                     for (DiskSnapshot& volume : o.snapshot.volumes)
                         volume.name = hugeRepairedText();
                 }},
                {"has very many", [](const auto& healthy) { return manyOf(*healthy); },
                 [](Outcome& o) { o.snapshot.volumes = manyOf(o.snapshot.volumes); }}};
    }
};

// --- UserDefaults

using PreferenceFaults = std::vector<Fault<std::optional<DefaultsValue>>>;

// Whatever is no Boolean is as good as nothing, and the default is off.
inline PreferenceFaults switchFaults(const std::function<void(Outcome&)>& off) {
    PreferenceFaults faults{{"fails", always(std::nullopt), off}};
    for (const DefaultsValue& value :
         {DefaultsValue("perhaps"), DefaultsValue(""), DefaultsValue(hugeText()), DefaultsValue(0.0),
          DefaultsValue(-1.0), DefaultsValue(0x1p63), DefaultsValue(kNaN), DefaultsValue(kInfinity)}) {
        faults.push_back({"is nonsense", always(value), off});
    }
    return faults;
}
// `isDefault` where nothing of use is stored, `isNever` where nothing is as low as this, `isMost` where
// everything is.
inline PreferenceFaults thresholdFaults(const std::function<void(Outcome&)>& isDefault,
                                        const std::function<void(Outcome&)>& isNever,
                                        const std::function<void(Outcome&)>& isMost) {
    PreferenceFaults faults{{"fails", always(std::nullopt), isDefault}};
    for (const DefaultsValue& value :
         {DefaultsValue("perhaps"), DefaultsValue(""), DefaultsValue(hugeText()), DefaultsValue(true),
          DefaultsValue(kNaN), DefaultsValue(kInfinity), DefaultsValue(-kInfinity)}) {
        faults.push_back({"is nonsense", always(value), isDefault});
    }
    faults.insert(faults.end(), {{"is 0", always(DefaultsValue(0.0)), isNever},
                                 {"is -1", always(DefaultsValue(-1.0)), isNever},
                                 {"is 2^63", always(DefaultsValue(0x1p63)), isMost}});
    return faults;
}

inline std::function<void(Outcome&)> without(const std::vector<std::string>& titles) {
    return [titles](Outcome& o) {
        for (const std::string& title : titles)
            takeBack(o, title);
    };
}
inline std::function<void(Outcome&)> worded(std::string title, std::string body) {
    return [title = std::move(title), body = std::move(body)](Outcome& o) {
        for (NotificationContent& content : o.shown) {
            if (content.title == title) content.body = body;
        }
    };
}

template <>
struct FaultsOf<&UserDefaults::objectForKey, &defaultskey::kSustainedLoadNotificationsEnabled> {
    static constexpr const char* kName = "sustainedLoadNotificationsEnabled";
    static PreferenceFaults faults() {
        return switchFaults(without({"CPU Sustained Load", "Memory Sustained Load"}));
    }
};
template <>
struct FaultsOf<&UserDefaults::objectForKey, &defaultskey::kStorageAlertEnabled> {
    static constexpr const char* kName = "storageAlertEnabled";
    static PreferenceFaults faults() { return switchFaults(without({"Storage Warning"})); }
};
template <>
struct FaultsOf<&UserDefaults::objectForKey, &defaultskey::kStorageAlertThresholdGB> {
    static constexpr const char* kName = "storageAlertThresholdGB";
    static PreferenceFaults faults() {
        return thresholdFaults(
            worded("Storage Warning", "Your Mac has less than 20 GB of free space remaining."),
            without({"Storage Warning"}),
            worded("Storage Warning",
                   "Your Mac has less than 9223372036854775807 GB of free space remaining."));
    }
};
template <>
struct FaultsOf<&UserDefaults::objectForKey, &defaultskey::kBatteryAlertEnabled> {
    static constexpr const char* kName = "batteryAlertEnabled";
    static PreferenceFaults faults() { return switchFaults(without({"Battery Warning"})); }
};
template <>
struct FaultsOf<&UserDefaults::objectForKey, &defaultskey::kBatteryAlertThresholdPct> {
    static constexpr const char* kName = "batteryAlertThresholdPct";
    static PreferenceFaults faults() {
        return thresholdFaults(without({"Battery Warning"}), without({"Battery Warning"}),
                               worded("Battery Warning", "Battery has dropped below 9223372036854775807%."));
    }
};
template <>
struct FaultsOf<&UserDefaults::setObject> {
    static constexpr const char* kName = "setObject";
    static constexpr const char* kWhyNotAsked = "only what the user does is stored";
};
template <>
struct FaultsOf<&UserDefaults::removeObjectForKey> {
    static constexpr const char* kName = "removeObjectForKey";
    static constexpr const char* kWhyNotAsked = "only the start-up removes a key";
};
template <>
struct FaultsOf<&UserDefaults::onDidChange> {
    static constexpr const char* kName = "onDidChange";
    static constexpr const char* kWhyNotAsked = "a tick reads the preferences anew instead of observing them";
};

// --- UserNotificationCenter

// What becomes of a notification that was handed in.
struct Delivery {
    bool isHealthy = true;
    bool isCompleted = false;
    std::optional<std::string> error{};
};

template <>
struct FaultsOf<&UserNotificationCenter::add> {
    static constexpr const char* kName = "add";
    static std::vector<Fault<Delivery>> faults() {
        const auto failing = [](const std::string& error, const std::string& line) {
            return Fault<Delivery>{
                "fails at once with an error", always(Delivery{false, true, error}), [line](Outcome& o) {
                    o.printed.assign(o.shown.size(), "Norvane: Failed to deliver notification - " + line);
                    o.shown.clear();
                }};
        };
        const auto lost = [](Outcome& o) { o.shown.clear(); };
        return {failing("no such name", "no such name"),
                failing("", ""),
                failing("several\nlines\r\n", "several lines  "),
                failing(std::string(1 << 20, 'x'), std::string(1 << 20, 'x')),
                {"never completes", always(Delivery{false, false, {}}), lost},
                {"completes at once and shows nothing", always(Delivery{false, true, {}}), lost}};
    }
};
template <>
struct FaultsOf<&UserNotificationCenter::requestAuthorization> {
    static constexpr const char* kName = "requestAuthorization";
    static constexpr const char* kWhyNotAsked = "asked at start-up and by the settings";
};
template <>
struct FaultsOf<&UserNotificationCenter::authorizationStatus> {
    static constexpr const char* kName = "authorizationStatus";
    static constexpr const char* kWhyNotAsked = "asked by the settings";
};

// --- StandardOutput, UUIDSource and the clocks

template <>
struct FaultsOf<&StandardOutput::printLine> {
    static constexpr const char* kName = "printLine";
    static constexpr const char* kWhyNotAsked = "only a failed delivery prints, and nothing is answered";
};

template <>
struct FaultsOf<&UUIDSource::next> {
    static constexpr const char* kName = "UUIDSource::next";
    static std::vector<Fault<UUID>> faults() {
        return {{"gives the same again and again", always(UUID()), {}}};
    }
};

// On a clock that does not go forward nothing lasts and no rate can be made.
inline void standingClock(Outcome& o, WallInstant shown) {
    SystemSnapshot& s = o.snapshot;
    s.timestamp = shown;
    s.cpuState = s.memoryState = o.systemState = ComponentState::normal;
    s.energyImpact = ImpactState::low;
    setSwapRates(o, 0, 0);
    setDrives(o, 0);
    takeBack(o, "CPU Sustained Load");
    takeBack(o, "Memory Sustained Load");
}
// And on one that stands before the start, the grace period never ends.
inline void earlyClock(Outcome& o, WallInstant shown) {
    standingClock(o, shown);
    o.shown.clear();
}

template <>
struct FaultsOf<&WallClock::now> {
    static constexpr const char* kName = "WallClock::now";
    static std::vector<Fault<WallInstant>> faults() {
        static constexpr WallInstant kFuture = WallInstant::max();
        static constexpr WallInstant kMirror{std::chrono::seconds(1'800'000'000)};
        const auto backwards = [](WallInstant healthy) { return kMirror - (healthy - WallInstant()); };
        return {{"stands at its beginning", always(WallInstant()),
                 [](Outcome& o) { earlyClock(o, WallInstant()); }},
                // What was first seen in that future does not become old when the clock is set right.
                {"stands at its end", always(kFuture), [](Outcome& o) { standingClock(o, kFuture); }, true},
                {"runs backwards", backwards,
                 [backwards](Outcome& o) { earlyClock(o, backwards(o.snapshot.timestamp)); }}};
    }
};
template <>
struct FaultsOf<&MonotonicClock::now> {
    static constexpr const char* kName = "MonotonicClock::now";
    static constexpr const char* kWhyNotAsked = "timers run on it, and no tick looks at it";
};

}  // namespace norvane
