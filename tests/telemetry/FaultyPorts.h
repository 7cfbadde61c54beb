#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "preferences/DefaultsKeys.h"
#include "telemetry/FaultyOperation.h"
#include "telemetry/OperationFaults.h"

// The ports that telemetry asks, each in front of a healthy one. Every operation that a tick asks goes
// through a stand-in that can be made to fail; the others are handed on.
namespace norvane {

class FaultyHostPort final : public HostPort {
 public:
    FaultyHostPort(HostPort& healthy, Operations& all) : healthy_(healthy), all_(all) {}

    std::optional<HostCPULoadInfo> host_statistics(TickToken tick) override {
        return statistics_(healthy_.host_statistics(tick));
    }
    std::optional<ProcessorInfo> host_processor_info(TickToken tick) override {
        return processorInfo_(healthy_.host_processor_info(tick));
    }
    std::optional<VMStatistics64> host_statistics64(TickToken tick, SwapCounters swapCounters) override {
        return statistics64_(healthy_.host_statistics64(tick, swapCounters));
    }
    std::uint64_t host_page_size() override { return pageSize_(healthy_.host_page_size()); }

 private:
    HostPort& healthy_;
    Operations& all_;
    FaultyOperation<std::optional<HostCPULoadInfo>> statistics_{all_, "host_statistics", loadFaults()};
    FaultyOperation<std::optional<ProcessorInfo>> processorInfo_{all_, "host_processor_info",
                                                                 processorFaults()};
    FaultyOperation<std::optional<VMStatistics64>> statistics64_{all_, "host_statistics64", memoryFaults()};
    FaultyOperation<std::uint64_t> pageSize_{all_, "host_page_size", {0, 1, kAllOnes}};
};

class FaultySysctl final : public Sysctl {
 public:
    FaultySysctl(Sysctl& healthy, Operations& all) : healthy_(healthy), all_(all) {}

    // A new name makes this not build until it is listed here.
    std::optional<std::int64_t> sysctlbyname(SysctlNumber name, TickToken tick) override {
        const auto answer = healthy_.sysctlbyname(name, tick);
        switch (name) {
            case SysctlNumber::hw_perflevel0_physicalcpu:
            case SysctlNumber::hw_perflevel1_physicalcpu:
            case SysctlNumber::hw_logicalcpu:
                return answer;
            case SysctlNumber::hw_perflevel0_logicalcpu:
                return performance_(answer);
            case SysctlNumber::hw_perflevel1_logicalcpu:
                return efficiency_(answer);
            case SysctlNumber::hw_optional_arm64:
                return arm64_(answer);
            case SysctlNumber::kern_memorystatus_vm_pressure_level:
                return pressure_(answer);
        }
        return std::nullopt;
    }
    std::optional<std::string> sysctlbyname(SysctlText name) override {
        const auto answer = healthy_.sysctlbyname(name);
        return name == SysctlText::hw_model ? model_(answer) : answer;
    }
    std::optional<XswUsage> sysctlbyname_vm_swapusage(TickToken tick) override {
        return swapUsage_(healthy_.sysctlbyname_vm_swapusage(tick));
    }

 private:
    using Number = FaultyOperation<std::optional<std::int64_t>>;

    Sysctl& healthy_;
    Operations& all_;
    Number performance_{all_, "hw.perflevel0.logicalcpu", numberFaults()};
    Number efficiency_{all_, "hw.perflevel1.logicalcpu", numberFaults()};
    Number arm64_{all_, "hw.optional.arm64", numberFaults()};
    Number pressure_{all_, "kern.memorystatus_vm_pressure_level", numberFaults()};
    FaultyOperation<std::optional<std::string>> model_{all_, "hw.model", textFaults()};
    FaultyOperation<std::optional<XswUsage>> swapUsage_{all_, "vm.swapusage", swapFaults()};
};

class FaultyProcessInfo final : public ProcessInfo {
 public:
    FaultyProcessInfo(ProcessInfo& healthy, Operations& all) : healthy_(healthy), all_(all) {}

    std::uint64_t physicalMemory(TickToken tick) override { return memory_(healthy_.physicalMemory(tick)); }
    int thermalState(TickToken tick) override { return thermal_(healthy_.thermalState(tick)); }
    double systemUptime() override { return uptime_(healthy_.systemUptime()); }
    bool isLowPowerModeEnabled() override { return healthy_.isLowPowerModeEnabled(); }

 private:
    ProcessInfo& healthy_;
    Operations& all_;
    FaultyOperation<std::uint64_t> memory_{all_, "physicalMemory", {0, 1, kAllOnes}};
    FaultyOperation<int> thermal_{all_, "thermalState", {4, -1, INT_MIN}};
    FaultyOperation<double> uptime_{all_, "systemUptime", {-1, 0x1p63, kNaN, kInfinity}};
};

class FaultyRegistry final : public Registry {
 public:
    FaultyRegistry(Registry& healthy, Operations& all) : healthy_(healthy), all_(all) {}

    std::optional<std::vector<RegistryEntry>> IOServiceGetMatchingServices(RegistryService service,
                                                                           TickToken tick) override {
        auto answer = healthy_.IOServiceGetMatchingServices(service, tick);
        switch (service) {
            case RegistryService::IOBlockStorageDriver:
                return drives_(std::move(answer));
            case RegistryService::IOAccelerator:
                return accelerators_(std::move(answer));
            case RegistryService::AppleSmartBattery:
                return batteries_(std::move(answer));
        }
        return std::nullopt;
    }

 private:
    using Matching = FaultyOperation<std::optional<Services>>;

    Registry& healthy_;
    Operations& all_;
    Matching drives_{all_, "IOBlockStorageDriver",
                     serviceFaults("Statistics", {"Bytes (Read)", "Bytes (Write)"})};
    Matching accelerators_{
        all_, "IOAccelerator",
        serviceFaults("PerformanceStatistics", {"Device Utilization %", "GPU Activity(%)"})};
    Matching batteries_{all_, "AppleSmartBattery", batteryFaults()};
};

class FaultyPowerSources final : public PowerSources {
 public:
    FaultyPowerSources(PowerSources& healthy, Operations& all)
        : healthy_(healthy), info_(all, "IOPSCopyPowerSourcesInfo", powerSourceFaults()) {}

    std::optional<std::vector<PowerSourceDescription>> IOPSCopyPowerSourcesInfo(TickToken tick) override {
        return info_(healthy_.IOPSCopyPowerSourcesInfo(tick));
    }

 private:
    PowerSources& healthy_;
    FaultyOperation<std::optional<std::vector<PowerSourceDescription>>> info_;
};

class FaultyFileManager final : public FileManager {
 public:
    FaultyFileManager(FileManager& healthy, Operations& all)
        : healthy_(healthy), urls_(all, "mountedVolumeURLs", volumeFaults()) {}

    std::optional<std::vector<VolumeURL>> mountedVolumeURLs(TickToken tick) override {
        return urls_(healthy_.mountedVolumeURLs(tick));
    }
    std::optional<std::vector<VolumeURL>> mountedVolumeURLs() override {
        return healthy_.mountedVolumeURLs();
    }

 private:
    FileManager& healthy_;
    FaultyOperation<std::optional<std::vector<VolumeURL>>> urls_;
};

class FaultyUserDefaults final : public UserDefaults {
 public:
    FaultyUserDefaults(UserDefaults& healthy, Operations& all) : healthy_(healthy), all_(all) {}

    std::optional<DefaultsValue> objectForKey(std::string_view key) const override {
        const auto answer = healthy_.objectForKey(key);
        for (const Value* const value :
             {&sustainedLoad_, &storage_, &storageThreshold_, &battery_, &batteryThreshold_})
            if (value->name() == key) return (*value)(answer);
        otherKeys.emplace_back(key);
        return answer;
    }
    void setObject(std::string_view key, DefaultsValue value) override {
        healthy_.setObject(key, std::move(value));
    }
    void removeObjectForKey(std::string_view key) override { healthy_.removeObjectForKey(key); }
    Cancellation onDidChange(std::function<void()> observer) override {
        return healthy_.onDidChange(std::move(observer));
    }

    // The keys asked for that have no faults. Keys are texts, so that only a run can tell of new ones.
    mutable std::vector<std::string> otherKeys;

 private:
    using Value = FaultyOperation<std::optional<DefaultsValue>>;

    UserDefaults& healthy_;
    Operations& all_;
    Value sustainedLoad_{all_, defaultskey::kSustainedLoadNotificationsEnabled, preferenceFaults()};
    Value storage_{all_, defaultskey::kStorageAlertEnabled, preferenceFaults()};
    Value storageThreshold_{all_, defaultskey::kStorageAlertThresholdGB, preferenceFaults()};
    Value battery_{all_, defaultskey::kBatteryAlertEnabled, preferenceFaults()};
    Value batteryThreshold_{all_, defaultskey::kBatteryAlertThresholdPct, preferenceFaults()};
};

class FaultyUserNotificationCenter final : public UserNotificationCenter {
 public:
    FaultyUserNotificationCenter(UserNotificationCenter& healthy, Operations& all)
        : healthy_(healthy), add_(all, "add", deliveryFaults()) {}

    void add(NotificationRequest request,
             std::function<void(std::optional<std::string> error)> completion) override {
        const Delivery delivery = add_(Delivery());
        if (delivery.isHealthy) {
            healthy_.add(std::move(request), std::move(completion));
        } else if (delivery.isCompleted) {
            completion(delivery.error);
        }
    }
    void requestAuthorization(std::function<void(bool isGranted)> completion) override {
        healthy_.requestAuthorization(std::move(completion));
    }
    void authorizationStatus(std::function<void(NotificationAuthorization)> completion) override {
        healthy_.authorizationStatus(std::move(completion));
    }

 private:
    UserNotificationCenter& healthy_;
    FaultyOperation<Delivery> add_;
};

class FaultyUUIDSource final : public UUIDSource {
 public:
    FaultyUUIDSource(UUIDSource& healthy, Operations& all)
        : healthy_(healthy), next_(all, "UUIDSource::next", {UUID()}) {}

    UUID next() override { return next_(healthy_.next()); }

 private:
    UUIDSource& healthy_;
    FaultyOperation<UUID> next_;
};

class FaultyWallClock final : public WallClock {
 public:
    FaultyWallClock(WallClock& healthy, Operations& all)
        : healthy_(healthy), now_(all, "WallClock::now", {WallInstant(), WallInstant::max()}) {}

    WallInstant now() const override { return now_(healthy_.now()); }

 private:
    WallClock& healthy_;
    FaultyOperation<WallInstant> now_;
};

}  // namespace norvane
