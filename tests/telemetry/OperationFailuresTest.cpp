#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/FaultyPorts.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// All that telemetry tells at some moment, by what it is about.
using Told = std::map<std::string, std::vector<double>>;

Told toldBy(const SystemSnapshot& s, const std::vector<NotificationContent>& shown) {
    const auto sizeOf = [](const auto& text) { return static_cast<double>(text.size()); };
    const auto number = [](const auto& value) { return static_cast<double>(value.value_or(-1)); };
    Told told{{"cpu", {s.cpuUsagePercent, s.cpuSustained}},
              {"cores", {s.performanceCoreUsage, s.efficiencyCoreUsage, s.idlePercent}},
              {"uptime", {s.uptime}},
              {"gpu", {s.gpuUsage}},
              {"memory", {s.wiredMemoryGB, s.compressedMemoryGB, s.appMemoryGB, s.cachedFilesGB}},
              {"all memory", {s.totalMemoryGB}},
              {"swap", {s.swapUsedGB}},
              {"swapping", {s.swapReadMBps, s.swapWriteMBps}},
              {"pressure", {static_cast<double>(s.memoryPressure)}},
              {"rates", {s.diskReadMBps, s.diskWriteMBps}},
              {"volumes", {s.usedDiskGB, s.totalDiskGB, sizeOf(s.volumes)}},
              {"heat", {static_cast<double>(s.thermalLevel)}},
              {"battery", {static_cast<double>(s.batteryPercentage), number(s.batteryCycleCount)}},
              {"power", {sizeOf(s.batteryTimeRemaining), sizeOf(s.batteryHealthCondition.value_or(""))}},
              {"model", {sizeOf(s.deviceModelName), s.isAppleSilicon ? 1.0 : 0.0}},
              {"alerts", {sizeOf(shown)}}};
    for (const auto& [name, numbers] : told)
        for (const double value : numbers)
            EXPECT_TRUE(std::isfinite(value)) << name;
    return told;
}

// What is told otherwise, and how.
std::string differences(const Told& a, const Told& b) {
    std::string names;
    for (const auto& [name, numbers] : a)
        if (numbers != b.at(name))
            names += (names.empty() ? "" : ", ") + name + " " + testing::PrintToString(numbers);
    return names;
}

// A laptop that has something to tell of everything, and telemetry on it, which asks ports that can be made
// to fail.
class FaultyLaptop {
 public:
    FaultyLaptop() {
        for (const auto name :
             {SysctlNumber::hw_perflevel0_logicalcpu, SysctlNumber::hw_perflevel1_logicalcpu})
            machine_.sysctl.number(name).always(2);
        machine_.sysctl.number(SysctlNumber::hw_optional_arm64).always(1);
        machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
        machine_.sysctl.text(SysctlText::hw_model).always("MacBookPro18,3");
        machine_.sysctl.swapUsage.always(XswUsage{8ULL << 30, 6ULL << 30, 2ULL << 30});
        machine_.hostPort.processors.setLoad(95);
        machine_.hostPort.processors.setLoad(0, 100);
        machine_.hostPort.statistics64.from([this] {
            const std::uint64_t counted = 2'560 * static_cast<std::uint64_t>(secondsAwake());
            return VMStatistics64{300'000, 400'000, 500'000, 300'000, 100'000, counted, counted};
        });
        machine_.processInfo.thermal.always(2);
        machine_.registry.services(RegistryService::IOBlockStorageDriver).from([this] {
            return serviceWith("Statistics", {"Bytes (Read)", "Bytes (Write)"}, 300'000'000 * secondsAwake());
        });
        machine_.registry.services(RegistryService::IOAccelerator)
            .always(serviceWith("PerformanceStatistics", {"Device Utilization %"}, 70));
        machine_.registry.services(RegistryService::AppleSmartBattery)
            .always({{RegistryEntry({{"MaxCapacity", 100}, {"CurrentCapacity", 40}, {"CycleCount", 312}})}});
        machine_.powerSources.sources.always(
            {{PropertyDictionary{{"Time to Empty", 135}, {"BatteryHealthCondition", "Normal"}}}});
        machine_.fileManager.volumes.always(
            {{{"/", VolumeResourceValues{"System", 500'000'000'000, 9'000'000'000, true, true, false}}}});
        preferences_.setSustainedLoadNotificationsEnabled(true);
        preferences_.setStorageAlertEnabled(true);
        preferences_.setStorageAlertThresholdGB(25);
        preferences_.setBatteryAlertEnabled(true);
        preferences_.setBatteryAlertThresholdPct(50);
        machine_.advance(1min);  // past the grace period
        otherKeys().clear();
        sampler_->setUIVisible(true);
        sampler_->start();
    }

    // What is told after more than thirty ticks and three minutes, most of which pass asleep.
    Told run() {
        machine_.advance(15s);
        machine_.suspend(170s);
        machine_.advance(20s);
        return toldBy(*sampler_->snapshot().get(), machine_.userNotificationCenter.shown);
    }

    const Operations& operations() const { return operations_; }
    std::vector<std::string>& otherKeys() { return defaults_.otherKeys; }

 private:
    std::int64_t secondsAwake() const { return machine_.time.monotonic().time_since_epoch() / 1s; }
    Platform platform() {
        return {.wallClock = wallClock_,
                .monotonicClock = machine_.time.monotonicClock(),
                .dispatch = machine_.dispatch,
                .hostPort = hostPort_,
                .sysctl = sysctl_,
                .processInfo = processInfo_,
                .registry = registry_,
                .powerSources = powerSources_,
                .fileManager = fileManager_,
                .userNotificationCenter = notifications_,
                .standardOutput = machine_.standardOutput,
                .loginItem = machine_.loginItem,
                .workspace = machine_.workspace,
                .mainBundle = machine_.mainBundle,
                .userDefaults = defaults_,
                .uuidSource = uuids_,
                .textRuler = machine_.textRuler,
                .appearance = machine_.appearance,
                .windowServer = machine_.windowServer,
                .application = machine_.application};
    }

    ScriptedMachine machine_;
    Operations operations_;
    FaultyWallClock wallClock_{machine_.time.wallClock(), operations_};
    FaultyHostPort hostPort_{machine_.hostPort, operations_};
    FaultySysctl sysctl_{machine_.sysctl, operations_};
    FaultyProcessInfo processInfo_{machine_.processInfo, operations_};
    FaultyRegistry registry_{machine_.registry, operations_};
    FaultyPowerSources powerSources_{machine_.powerSources, operations_};
    FaultyFileManager fileManager_{machine_.fileManager, operations_};
    FaultyUserNotificationCenter notifications_{machine_.userNotificationCenter, operations_};
    FaultyUserDefaults defaults_{machine_.userDefaults, operations_};
    FaultyUUIDSource uuids_{machine_.uuidSource, operations_};
    PreferencesStore preferences_{defaults_};
    std::shared_ptr<PerformanceSampler> sampler_ = PerformanceSampler::create(platform(), preferences_);
};

// What changes, as the first fault that changes it leaves it; nothing else of the machine may be told
// otherwise. Of what is not here one alert of four depends.
const std::map<std::string, std::string> kChanges{
    {"WallClock::now", "alerts { 0 }, rates { 0, 0 }, swapping { 0, 0 }"},
    {"host_statistics", "alerts { 3 }, cpu { 0, 0 }"},
    {"host_processor_info", "cores { 0, 0, 0 }"},
    {"host_statistics64", "memory { 0, 0, 0, 0 }, swap { 0 }, swapping { 0, 0 }"},
    {"host_page_size", "memory { 0, 0, 0, 0 }, swapping { 0, 0 }"},
    {"hw.perflevel0.logicalcpu", ""},
    {"hw.perflevel1.logicalcpu", "cores { 96.25, 0, 3.75 }"},
    {"hw.optional.arm64", "model { 11, 0 }"},
    {"kern.memorystatus_vm_pressure_level", "alerts { 3 }, pressure { 1 }"},
    {"hw.model", "model { 3, 1 }"},
    {"vm.swapusage", "swap { 0 }"},
    {"physicalMemory", "all memory { 0 }"},
    {"thermalState", "heat { 0 }"},
    {"systemUptime", "uptime { 0 }"},
    {"IOBlockStorageDriver", "rates { 0, 0 }"},
    {"IOAccelerator", "gpu { 0 }"},
    {"AppleSmartBattery", "alerts { 3 }, battery { 100, -1 }, power { 13, 0 }"},
    {"IOPSCopyPowerSourcesInfo", "power { 3, 0 }"},
    {"mountedVolumeURLs", "alerts { 3 }, volumes { 0, 0, 0 }"},
    {"add", "alerts { 0 }"},
    {"sustainedLoadNotificationsEnabled", "alerts { 2 }"},
    {"UUIDSource::next", ""}};
// Asked once, or remembered: what they brought outlives them.
const std::set<std::string> kWithTraces = {"hw.perflevel1.logicalcpu", "hw.optional.arm64", "hw.model",
                                           "WallClock::now"};

TEST(OperationFailures, EachFailsAloneAndEverythingElseStaysTrue) {
    FaultyLaptop healthy;
    const Told first = healthy.run();
    EXPECT_EQ(healthy.otherKeys(), std::vector<std::string>()) << "a tick's preference needs its faults";
    for (const auto& [name, numbers] : first)
        EXPECT_FALSE(std::count(numbers.begin(), numbers.end(), 0)) << name << " has nothing to tell";
    Told later = healthy.run();
    for (std::size_t i = 0; i < healthy.operations().size(); ++i) {
        const std::string& name = healthy.operations()[i]->name();
        Told changed = first;
        for (std::size_t fault = 0; fault < healthy.operations()[i]->faultNames().size(); ++fault) {
            FaultyLaptop faulty;
            AnyOperation& operation = *faulty.operations()[i];
            operation.fail(fault);
            for (auto& [what, numbers] : faulty.run())
                if (changed[what] == first.at(what)) changed[what] = numbers;
            if (kWithTraces.contains(name)) continue;
            operation.recover();
            Told recovered = faulty.run();
            recovered["alerts"] = later["alerts"];  // these come when they come
            EXPECT_EQ(differences(recovered, later), "") << name << " " << fault << " recovers";
        }
        EXPECT_EQ(differences(changed, first), kChanges.contains(name) ? kChanges.at(name) : "alerts { 3 }")
            << name;
    }
}

}  // namespace
}  // namespace norvane
