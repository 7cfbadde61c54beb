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

template <typename Port>
class FaultyPort : public Port {
 public:
    FaultyPort(Port& healthy, Operations& all) : healthy_(healthy), all_(all) {}

 protected:
    template <typename Answer>
    using Faulty = FaultyOperation<std::optional<Answer>>;

    Port& healthy_;
    Operations& all_;
};

class FaultyHostPort final : public FaultyPort<HostPort> {
 public:
    using FaultyPort::FaultyPort;

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
    Faulty<HostCPULoadInfo> statistics_{
        all_,
        "host_statistics",
        {std::nullopt, HostCPULoadInfo(), HostCPULoadInfo{UINT_MAX, UINT_MAX, UINT_MAX, UINT_MAX}}};
    Faulty<ProcessorInfo> processorInfo_{all_, "host_processor_info", processorFaults()};
    Faulty<VMStatistics64> statistics64_{all_, "host_statistics64", memoryFaults()};
    FaultyOperation<std::uint64_t> pageSize_{all_, "host_page_size", {0, 1, kAllOnes}};
};

class FaultySysctl final : public FaultyPort<Sysctl> {
 public:
    using FaultyPort::FaultyPort;

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
    Faulty<std::int64_t> performance_{all_, "hw.perflevel0.logicalcpu", numberFaults()};
    Faulty<std::int64_t> efficiency_{all_, "hw.perflevel1.logicalcpu", numberFaults()};
    Faulty<std::int64_t> arm64_{all_, "hw.optional.arm64", numberFaults()};
    Faulty<std::int64_t> pressure_{all_, "kern.memorystatus_vm_pressure_level", numberFaults()};
    Faulty<std::string> model_{
        all_, "hw.model", {std::nullopt, std::string(), std::string("\0iMac", 5), hugeText() + "iMac"}};
    Faulty<XswUsage> swapUsage_{
        all_, "vm.swapusage", {std::nullopt, XswUsage(), XswUsage{kAllOnes, kAllOnes, kAllOnes}}};
};

class FaultyProcessInfo final : public FaultyPort<ProcessInfo> {
 public:
    using FaultyPort::FaultyPort;

    std::uint64_t physicalMemory(TickToken tick) override { return memory_(healthy_.physicalMemory(tick)); }
    int thermalState(TickToken tick) override { return thermal_(healthy_.thermalState(tick)); }
    double systemUptime() override { return uptime_(healthy_.systemUptime()); }
    bool isLowPowerModeEnabled() override { return healthy_.isLowPowerModeEnabled(); }

 private:
    FaultyOperation<std::uint64_t> memory_{all_, "physicalMemory", {0, 1, kAllOnes}};
    FaultyOperation<int> thermal_{all_, "thermalState", {4, -1, INT_MIN}};
    FaultyOperation<double> uptime_{all_, "systemUptime", {-1, 0x1p63, kNaN, kInfinity}};
};

class FaultyRegistry final : public FaultyPort<Registry> {
 public:
    using FaultyPort::FaultyPort;

    std::optional<Services> IOServiceGetMatchingServices(RegistryService service, TickToken tick) override {
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
    Faulty<Services> drives_{all_, "IOBlockStorageDriver",
                             serviceFaults("Statistics", {"Bytes (Read)", "Bytes (Write)"})};
    Faulty<Services> accelerators_{
        all_, "IOAccelerator",
        serviceFaults("PerformanceStatistics", {"Device Utilization %", "GPU Activity(%)"})};
    Faulty<Services> batteries_{all_, "AppleSmartBattery", batteryFaults()};
};

class FaultyPowerSources final : public FaultyPort<PowerSources> {
 public:
    using FaultyPort::FaultyPort;

    std::optional<std::vector<PowerSourceDescription>> IOPSCopyPowerSourcesInfo(TickToken tick) override {
        return info_(healthy_.IOPSCopyPowerSourcesInfo(tick));
    }

 private:
    Faulty<std::vector<PowerSourceDescription>> info_{all_, "IOPSCopyPowerSourcesInfo", powerSourceFaults()};
};

class FaultyFileManager final : public FaultyPort<FileManager> {
 public:
    using FaultyPort::FaultyPort;

    std::optional<std::vector<VolumeURL>> mountedVolumeURLs(TickToken tick) override {
        return urls_(healthy_.mountedVolumeURLs(tick));
    }
    std::optional<std::vector<VolumeURL>> mountedVolumeURLs() override {
        return healthy_.mountedVolumeURLs();
    }

 private:
    Faulty<std::vector<VolumeURL>> urls_{all_, "mountedVolumeURLs", volumeFaults()};
};

class FaultyUserDefaults final : public FaultyPort<UserDefaults> {
 public:
    using FaultyPort::FaultyPort;

    std::optional<DefaultsValue> objectForKey(std::string_view key) const override {
        const auto answer = healthy_.objectForKey(key);
        for (const auto* const value :
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
    using Value = Faulty<DefaultsValue>;

    Value sustainedLoad_{all_, defaultskey::kSustainedLoadNotificationsEnabled, preferenceFaults()};
    Value storage_{all_, defaultskey::kStorageAlertEnabled, preferenceFaults()};
    Value storageThreshold_{all_, defaultskey::kStorageAlertThresholdGB, preferenceFaults()};
    Value battery_{all_, defaultskey::kBatteryAlertEnabled, preferenceFaults()};
    Value batteryThreshold_{all_, defaultskey::kBatteryAlertThresholdPct, preferenceFaults()};
};

class FaultyUserNotificationCenter final : public FaultyPort<UserNotificationCenter> {
 public:
    using FaultyPort::FaultyPort;

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
    FaultyOperation<Delivery> add_{
        all_, "add", {{false, true, hugeText()}, {false, true, {}}, {false, false, {}}}};
};

class FaultyUUIDSource final : public FaultyPort<UUIDSource> {
 public:
    using FaultyPort::FaultyPort;

    UUID next() override { return next_(healthy_.next()); }

 private:
    FaultyOperation<UUID> next_{all_, "UUIDSource::next", {UUID()}};
};

class FaultyWallClock final : public FaultyPort<WallClock> {
 public:
    using FaultyPort::FaultyPort;

    WallInstant now() const override { return now_(healthy_.now()); }

 private:
    FaultyOperation<WallInstant> now_{all_, "WallClock::now", {WallInstant(), WallInstant::max()}};
};

}  // namespace norvane
