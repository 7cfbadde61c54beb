#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/FaultyPorts.h"
#include "telemetry/Outcome.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A laptop that has something to tell in every field: four efficiency cores that are pinned and four
// performance cores near it, 16 GB under pressure and swapping, a busy GPU and a busy, nearly full disk, hot,
// on battery, with every alert on. Each number is beyond a threshold and the neutral value before it.
// Telemetry runs on it through ports that can be made to fail.
class FaultyLaptop {
 public:
    FaultyLaptop() {
        setProcessors();
        setMemory();
        setDevices();
        setVolumes();
        preferences_.setSustainedLoadNotificationsEnabled(true);
        preferences_.setStorageAlertEnabled(true);
        preferences_.setStorageAlertThresholdGB(25);
        preferences_.setBatteryAlertEnabled(true);
        preferences_.setBatteryAlertThresholdPct(50);
        machine_.advance(1min);  // past the grace period
        defaults_.otherKeys.clear();
    }

    // Long enough for everything to be decided: more than thirty ticks, more than three minutes of which
    // most pass asleep.
    void run() {
        sampler_->setUIVisible(true);
        sampler_->start();
        machine_.advance(15s);
        machine_.suspend(170s);
        machine_.advance(15s);
    }
    // And for everything to be read and decided again.
    void runOn() { machine_.advance(35s); }

    Outcome outcome() const {
        const auto snapshot = sampler_->snapshot().get();
        const auto history = sampler_->cpuHistory().get();
        if (!snapshot || history->empty()) {
            ADD_FAILURE() << "no snapshot";
            return {};
        }
        EXPECT_EQ(*sampler_->volumes().get(), snapshot->volumes);
        Outcome outcome{.snapshot = *snapshot,
                        .systemState = sampler_->systemState().get(),
                        .menuBarStats = sampler_->menuBarStats().get(),
                        .newestPoint = history->back(),
                        .shown = machine_.userNotificationCenter.shown,
                        .printed = machine_.standardOutput.lines};
        for (DiskSnapshot& volume : outcome.snapshot.volumes)
            volume.id = {};
        return outcome;
    }

    const Operations& operations() const { return operations_; }
    const std::vector<std::string>& otherKeysAsked() const { return defaults_.otherKeys; }

 private:
    // Seconds awake.
    std::uint32_t seconds() const {
        return static_cast<std::uint32_t>(
            std::chrono::duration_cast<std::chrono::seconds>(machine_.time.monotonic().time_since_epoch())
                .count());
    }

    void setProcessors() {
        machine_.sysctl.number(SysctlNumber::hw_perflevel0_logicalcpu).always(4);
        machine_.sysctl.number(SysctlNumber::hw_perflevel1_logicalcpu).always(4);
        machine_.sysctl.number(SysctlNumber::hw_optional_arm64).always(1);
        machine_.sysctl.text(SysctlText::hw_model).always("MacBookPro18,3");
        machine_.hostPort.statistics.from([this] {
            const std::uint32_t t = seconds();
            return HostCPULoadInfo{.user = 720 * t, .system = 24 * t, .idle = 48 * t, .nice = 8 * t};
        });
        machine_.hostPort.processorInfo.from([this] {
            const auto t = static_cast<std::int32_t>(seconds());
            ProcessorInfo info{.processorCount = 8, .ticks = {}};
            for (int i = 0; i < 4; ++i)
                info.ticks.insert(info.ticks.end(), {100 * t, 0, 0, 0});
            for (int i = 0; i < 4; ++i)
                info.ticks.insert(info.ticks.end(), {80 * t, 6 * t, 12 * t, 2 * t});
            return info;
        });
        machine_.processInfo.thermal.always(2);
    }
    void setMemory() {
        machine_.hostPort.statistics64.from([this] {
            constexpr std::uint64_t kPagesInGB = 262'144;
            constexpr std::uint64_t kPagesPerMB = 256;
            return VMStatistics64{.wire_count = 3 * kPagesInGB,
                                  .active_count = 4 * kPagesInGB,
                                  .compressor_page_count = 5 * kPagesInGB,
                                  .external_page_count = 3 * kPagesInGB,
                                  .purgeable_count = kPagesInGB,
                                  .swapins = 20 * kPagesPerMB * seconds(),
                                  .swapouts = 10 * kPagesPerMB * seconds()};
        });
        machine_.sysctl.swapUsage.always(XswUsage{8ULL << 30, 6ULL << 30, 2ULL << 30});
        machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(4);
    }
    void setDevices() {
        machine_.registry.services(RegistryService::IOBlockStorageDriver).from([this] {
            constexpr std::int64_t kBytesInMB = 1'048'576;
            return Services{RegistryEntry(
                {{"Statistics", PropertyDictionary{{"Bytes (Read)", 300 * kBytesInMB * seconds()},
                                                   {"Bytes (Write)", 200 * kBytesInMB * seconds()}}}})};
        });
        machine_.registry.services(RegistryService::IOAccelerator)
            .always(serviceWith("PerformanceStatistics", {"Device Utilization %"}, 90));
        machine_.registry.services(RegistryService::AppleSmartBattery)
            .always({{RegistryEntry({{"DesignCapacity", 5'100},
                                     {"AppleRawMaxCapacity", 4'800},
                                     {"AppleRawCurrentCapacity", 1'920},
                                     {"MaxCapacity", 100},
                                     {"CurrentCapacity", 40},
                                     {"CycleCount", 312},
                                     {"Temperature", 3'600},
                                     {"ExternalConnected", false},
                                     {"IsCharging", false}})}});
        machine_.powerSources.sources.always({{PropertyDictionary{
            {"Is Charged", false}, {"Time to Empty", 135}, {"BatteryHealthCondition", "Normal"}}}});
    }
    void setVolumes() {
        constexpr std::int64_t kGB = 1'000'000'000;
        machine_.fileManager.volumes.always(
            {{{"/", VolumeResourceValues{"System", 500 * kGB, 9 * kGB, true, true, false}},
              {"/media/ada/STICK", VolumeResourceValues{{}, 64 * kGB, 14 * kGB, false, false, true}}}});
    }
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

std::string list(const std::set<std::string>& names) {
    std::string all;
    for (const std::string& name : names)
        all += (all.empty() ? "" : ", ") + name;
    return all;
}

// All that its faults change, each by itself; nothing else of the machine may be told otherwise.
const std::map<std::string, std::string> kChanges = {
    {"WallClock::now",
     "cpuState, diskReadMBps, diskWriteMBps, energyImpact, isMemoryThrashing, isStorageHeavyIO, "
     "memoryState, notifications, swapReadMBps, swapWriteMBps, the published systemState, "
     "timestamp"},
    {"host_statistics",
     "cpuHistory, cpuState, cpuSustained, cpuUsagePercent, isCPUModerateLoad, menuBarStats, "
     "notifications"},
    {"host_processor_info",
     "cpuHistory, efficiencyCoreUsage, efficiencyCoreUsages, idlePercent, isPCoreActive, "
     "isPCoreSaturated, performanceCoreUsage, performanceCoreUsages"},
    {"host_statistics64",
     "appMemoryGB, cachedFilesGB, compressedMemoryGB, isMemoryCachingActive, "
     "isMemoryHighlyCompressed, isMemorySwapHigh, isMemoryThrashing, menuBarStats, swapReadMBps, "
     "swapUsedGB, swapWriteMBps, usedMemoryGB, wiredMemoryGB"},
    {"host_page_size",
     "appMemoryGB, cachedFilesGB, compressedMemoryGB, isMemoryCachingActive, "
     "isMemoryHighlyCompressed, isMemoryThrashing, menuBarStats, swapReadMBps, swapWriteMBps, "
     "usedMemoryGB, wiredMemoryGB"},
    {"hw.perflevel0.logicalcpu", ""},
    {"hw.perflevel1.logicalcpu",
     "cpuHistory, efficiencyCoreUsage, efficiencyCoreUsages, isAppleSiliconOptimized, "
     "isPCoreActive, isPCoreSaturated, performanceCoreUsage, performanceCoreUsages"},
    {"hw.optional.arm64", "isAppleSilicon"},
    {"kern.memorystatus_vm_pressure_level", "memoryPressure, memoryState, notifications"},
    {"hw.model", "deviceModelIcon, deviceModelName"},
    {"vm.swapusage", "isMemorySwapHigh, swapUsedGB"},
    {"physicalMemory", "isMemoryCachingActive, isMemoryHighlyCompressed, menuBarStats, totalMemoryGB"},
    {"thermalState", "thermalLevel"},
    {"systemUptime", "uptime"},
    {"IOBlockStorageDriver", "diskReadMBps, diskWriteMBps, isStorageHeavyIO"},
    {"IOAccelerator", "gpuUsage, isGPUActive, isGPUHigh, isGPUSaturated"},
    {"AppleSmartBattery",
     "batteryCurrentCapacitymAh, batteryCycleCount, batteryDesignCapacitymAh, "
     "batteryHealthCondition, batteryMaxCapacitymAh, batteryPercentage, batteryTemperatureC, "
     "batteryTimeRemaining, hasBattery, isBatteryWarm, isCharging, isOnBattery, notifications"},
    {"IOPSCopyPowerSourcesInfo", "batteryHealthCondition, batteryTimeRemaining"},
    {"mountedVolumeURLs",
     "isStorageCritical, isStorageFilling, isStorageLow, notifications, totalDiskGB, usedDiskGB, "
     "volumes"},
    {"add", "notifications, printed lines"},
    {"sustainedLoadNotificationsEnabled", "notifications"},
    {"storageAlertEnabled", "notifications"},
    {"storageAlertThresholdGB", "notifications"},
    {"batteryAlertEnabled", "notifications"},
    {"batteryAlertThresholdPct", "notifications"},
    {"UUIDSource::next", ""},
};
// Asked once, or remembered: what they brought outlives them.
const std::set<std::string> kWithTraces = {"hw.perflevel1.logicalcpu", "hw.optional.arm64", "hw.model",
                                           "WallClock::now"};

TEST(OperationFailures, TheHealthyMachineHasSomethingToTellInEveryField) {
    FaultyLaptop laptop;
    laptop.run();
    const Outcome outcome = laptop.outcome();
    Outcome neutral;
    neutral.snapshot.memoryPressure = 1;
    neutral.snapshot.batteryPercentage = 100;
    neutral.snapshot.isCharging = true;
    // Cores that are pinned leave no room for the two flags of calm ones.
    neutral.snapshot.isSystemIdle = neutral.snapshot.isAppleSiliconOptimized = true;
    EXPECT_EQ(differences(outcome, neutral).size(), 60 + 5 - 1U) << list(differences(outcome, neutral));
    EXPECT_TRUE(outcome.printed.empty());
    EXPECT_EQ(outcome.shown.size(), 4U);
    EXPECT_EQ(outcome.snapshot.energyImpact, ImpactState::high);
    EXPECT_EQ(laptop.otherKeysAsked(), std::vector<std::string>()) << "a tick's preference needs its faults";
}

TEST(OperationFailures, EachFailsAloneAndEverythingElseStaysTrue) {
    FaultyLaptop healthy;
    healthy.run();
    const Outcome first = healthy.outcome();
    healthy.runOn();
    const Outcome later = healthy.outcome();
    for (std::size_t i = 0; i < healthy.operations().size(); ++i) {
        const std::string name = healthy.operations()[i]->name();
        std::set<std::string> changed;
        for (std::size_t fault = 0; fault < healthy.operations()[i]->faultNames().size(); ++fault) {
            FaultyLaptop faulty;
            AnyOperation& operation = *faulty.operations()[i];
            operation.fail(fault);
            faulty.run();
            changed.merge(differences(faulty.outcome(), first));

            if (kWithTraces.contains(name)) continue;
            operation.recover();
            faulty.runOn();
            Outcome recovered = faulty.outcome();
            recovered.shown = later.shown;  // these come when they come
            recovered.printed = later.printed;
            EXPECT_EQ(list(differences(recovered, later)), "")
                << name << ", fault " << fault << ", and recovers";
        }
        EXPECT_EQ(list(changed), kChanges.contains(name) ? kChanges.at(name) : "no row") << name;
    }
}

}  // namespace
}  // namespace norvane
