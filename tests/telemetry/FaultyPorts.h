#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "telemetry/OperationFaults.h"

// The ports that telemetry asks, each in front of a healthy one. Every operation of a port goes through a
// stand-in that can be made to fail; a new operation, or a new name of one that takes names, makes this not
// build until it has a stand-in, and the stand-in not until its faults are listed in OperationFaults.h.
//
// The ports that no tick knows are not among them: Application, Appearance, Dispatch (which takes work and
// answers nothing), LoginItem, MainBundle, TextRuler, WindowServer, Workspace and what they hand out.
#pragma GCC diagnostic push
#pragma GCC diagnostic error "-Wswitch"

namespace norvane {

using Operations = std::vector<AnyOperation*>;

class FaultyHostPort final : public HostPort {
 public:
    FaultyHostPort(HostPort& healthy, Operations& all)
        : healthy_(healthy), statistics_(all), processorInfo_(all), statistics64_(all), pageSize_(all) {}

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
    FaultyOperation<&HostPort::host_statistics> statistics_;
    FaultyOperation<&HostPort::host_processor_info> processorInfo_;
    FaultyOperation<&HostPort::host_statistics64> statistics64_;
    FaultyOperation<&HostPort::host_page_size> pageSize_;
};

class FaultySysctl final : public Sysctl {
 public:
    FaultySysctl(Sysctl& healthy, Operations& all)
        : healthy_(healthy),
          performancePhysical_(all),
          efficiencyPhysical_(all),
          performanceLogical_(all),
          efficiencyLogical_(all),
          logical_(all),
          arm64_(all),
          pressure_(all),
          model_(all),
          brand_(all),
          swapUsage_(all) {}

    std::optional<std::int64_t> sysctlbyname(SysctlNumber name, TickToken tick) override {
        const auto answer = healthy_.sysctlbyname(name, tick);
        switch (name) {
            case SysctlNumber::hw_perflevel0_physicalcpu:
                performancePhysical_();
                return answer;
            case SysctlNumber::hw_perflevel1_physicalcpu:
                efficiencyPhysical_();
                return answer;
            case SysctlNumber::hw_perflevel0_logicalcpu:
                return performanceLogical_(answer);
            case SysctlNumber::hw_perflevel1_logicalcpu:
                return efficiencyLogical_(answer);
            case SysctlNumber::hw_logicalcpu:
                return logical_(answer);
            case SysctlNumber::hw_optional_arm64:
                return arm64_(answer);
            case SysctlNumber::kern_memorystatus_vm_pressure_level:
                return pressure_(answer);
        }
        return std::nullopt;
    }
    std::optional<std::string> sysctlbyname(SysctlText name) override {
        const auto answer = healthy_.sysctlbyname(name);
        switch (name) {
            case SysctlText::hw_model:
                return model_(answer);
            case SysctlText::machdep_cpu_brand_string:
                brand_();
                return answer;
        }
        return std::nullopt;
    }
    std::optional<XswUsage> sysctlbyname_vm_swapusage(TickToken tick) override {
        return swapUsage_(healthy_.sysctlbyname_vm_swapusage(tick));
    }

 private:
    Sysctl& healthy_;
    UnaskedOperation<kSysctlNumber, SysctlNumber::hw_perflevel0_physicalcpu> performancePhysical_;
    UnaskedOperation<kSysctlNumber, SysctlNumber::hw_perflevel1_physicalcpu> efficiencyPhysical_;
    FaultyOperation<kSysctlNumber, SysctlNumber::hw_perflevel0_logicalcpu> performanceLogical_;
    FaultyOperation<kSysctlNumber, SysctlNumber::hw_perflevel1_logicalcpu> efficiencyLogical_;
    FaultyOperation<kSysctlNumber, SysctlNumber::hw_logicalcpu> logical_;
    FaultyOperation<kSysctlNumber, SysctlNumber::hw_optional_arm64> arm64_;
    FaultyOperation<kSysctlNumber, SysctlNumber::kern_memorystatus_vm_pressure_level> pressure_;
    FaultyOperation<kSysctlText, SysctlText::hw_model> model_;
    UnaskedOperation<kSysctlText, SysctlText::machdep_cpu_brand_string> brand_;
    FaultyOperation<&Sysctl::sysctlbyname_vm_swapusage> swapUsage_;
};

class FaultyProcessInfo final : public ProcessInfo {
 public:
    FaultyProcessInfo(ProcessInfo& healthy, Operations& all)
        : healthy_(healthy), memory_(all), thermal_(all), uptime_(all), lowPower_(all) {}

    std::uint64_t physicalMemory(TickToken tick) override { return memory_(healthy_.physicalMemory(tick)); }
    int thermalState(TickToken tick) override { return thermal_(healthy_.thermalState(tick)); }
    double systemUptime() override { return uptime_(healthy_.systemUptime()); }
    bool isLowPowerModeEnabled() override {
        lowPower_();
        return healthy_.isLowPowerModeEnabled();
    }

 private:
    ProcessInfo& healthy_;
    FaultyOperation<&ProcessInfo::physicalMemory> memory_;
    FaultyOperation<&ProcessInfo::thermalState> thermal_;
    FaultyOperation<&ProcessInfo::systemUptime> uptime_;
    UnaskedOperation<&ProcessInfo::isLowPowerModeEnabled> lowPower_;
};

class FaultyRegistry final : public Registry {
 public:
    FaultyRegistry(Registry& healthy, Operations& all)
        : healthy_(healthy), drives_(all), accelerators_(all), batteries_(all) {}

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
    Registry& healthy_;
    FaultyOperation<&Registry::IOServiceGetMatchingServices, RegistryService::IOBlockStorageDriver> drives_;
    FaultyOperation<&Registry::IOServiceGetMatchingServices, RegistryService::IOAccelerator> accelerators_;
    FaultyOperation<&Registry::IOServiceGetMatchingServices, RegistryService::AppleSmartBattery> batteries_;
};

class FaultyPowerSources final : public PowerSources {
 public:
    FaultyPowerSources(PowerSources& healthy, Operations& all) : healthy_(healthy), info_(all) {}

    std::optional<std::vector<PowerSourceDescription>> IOPSCopyPowerSourcesInfo(TickToken tick) override {
        return info_(healthy_.IOPSCopyPowerSourcesInfo(tick));
    }

 private:
    PowerSources& healthy_;
    FaultyOperation<&PowerSources::IOPSCopyPowerSourcesInfo> info_;
};

class FaultyFileManager final : public FileManager {
 public:
    FaultyFileManager(FileManager& healthy, Operations& all) : healthy_(healthy), urls_(all), now_(all) {}

    std::optional<std::vector<VolumeURL>> mountedVolumeURLs(TickToken tick) override {
        return urls_(healthy_.mountedVolumeURLs(tick));
    }
    std::optional<std::vector<VolumeURL>> mountedVolumeURLs() override {
        now_();
        return healthy_.mountedVolumeURLs();
    }

 private:
    FileManager& healthy_;
    FaultyOperation<kVolumesOfTick> urls_;
    UnaskedOperation<kVolumesNow> now_;
};

class FaultyUserDefaults final : public UserDefaults {
 public:
    FaultyUserDefaults(UserDefaults& healthy, Operations& all)
        : healthy_(healthy),
          sustainedLoad_(all),
          storage_(all),
          storageThreshold_(all),
          battery_(all),
          batteryThreshold_(all),
          set_(all),
          remove_(all),
          observe_(all) {}

    std::optional<DefaultsValue> objectForKey(std::string_view key) const override {
        const auto answer = healthy_.objectForKey(key);
        if (key == defaultskey::kSustainedLoadNotificationsEnabled) return sustainedLoad_(answer);
        if (key == defaultskey::kStorageAlertEnabled) return storage_(answer);
        if (key == defaultskey::kStorageAlertThresholdGB) return storageThreshold_(answer);
        if (key == defaultskey::kBatteryAlertEnabled) return battery_(answer);
        if (key == defaultskey::kBatteryAlertThresholdPct) return batteryThreshold_(answer);
        otherKeys.emplace_back(key);
        return answer;
    }
    void setObject(std::string_view key, DefaultsValue value) override {
        set_();
        healthy_.setObject(key, std::move(value));
    }
    void removeObjectForKey(std::string_view key) override {
        remove_();
        healthy_.removeObjectForKey(key);
    }
    Cancellation onDidChange(std::function<void()> observer) override {
        observe_();
        return healthy_.onDidChange(std::move(observer));
    }

    // The keys asked for that have no faults. Keys are texts, so that only a run can tell of new ones.
    mutable std::vector<std::string> otherKeys;

 private:
    UserDefaults& healthy_;
    mutable FaultyOperation<&UserDefaults::objectForKey, &defaultskey::kSustainedLoadNotificationsEnabled>
        sustainedLoad_;
    mutable FaultyOperation<&UserDefaults::objectForKey, &defaultskey::kStorageAlertEnabled> storage_;
    mutable FaultyOperation<&UserDefaults::objectForKey, &defaultskey::kStorageAlertThresholdGB>
        storageThreshold_;
    mutable FaultyOperation<&UserDefaults::objectForKey, &defaultskey::kBatteryAlertEnabled> battery_;
    mutable FaultyOperation<&UserDefaults::objectForKey, &defaultskey::kBatteryAlertThresholdPct>
        batteryThreshold_;
    UnaskedOperation<&UserDefaults::setObject> set_;
    UnaskedOperation<&UserDefaults::removeObjectForKey> remove_;
    UnaskedOperation<&UserDefaults::onDidChange> observe_;
};

class FaultyUserNotificationCenter final : public UserNotificationCenter {
 public:
    FaultyUserNotificationCenter(UserNotificationCenter& healthy, Operations& all)
        : healthy_(healthy), add_(all), request_(all), status_(all) {}

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
        request_();
        healthy_.requestAuthorization(std::move(completion));
    }
    void authorizationStatus(std::function<void(NotificationAuthorization)> completion) override {
        status_();
        healthy_.authorizationStatus(std::move(completion));
    }

 private:
    UserNotificationCenter& healthy_;
    FaultyOperation<&UserNotificationCenter::add> add_;
    UnaskedOperation<&UserNotificationCenter::requestAuthorization> request_;
    UnaskedOperation<&UserNotificationCenter::authorizationStatus> status_;
};

class FaultyStandardOutput final : public StandardOutput {
 public:
    FaultyStandardOutput(StandardOutput& healthy, Operations& all) : healthy_(healthy), print_(all) {}

    void printLine(std::string_view line) override {
        print_();
        healthy_.printLine(line);
    }

 private:
    StandardOutput& healthy_;
    UnaskedOperation<&StandardOutput::printLine> print_;
};

class FaultyUUIDSource final : public UUIDSource {
 public:
    FaultyUUIDSource(UUIDSource& healthy, Operations& all) : healthy_(healthy), next_(all) {}

    UUID next() override { return next_(healthy_.next()); }

 private:
    UUIDSource& healthy_;
    FaultyOperation<&UUIDSource::next> next_;
};

class FaultyWallClock final : public WallClock {
 public:
    FaultyWallClock(WallClock& healthy, Operations& all) : healthy_(healthy), now_(all) {}

    WallInstant now() const override { return now_(healthy_.now()); }

 private:
    WallClock& healthy_;
    mutable FaultyOperation<&WallClock::now> now_;
};

class FaultyMonotonicClock final : public MonotonicClock {
 public:
    FaultyMonotonicClock(MonotonicClock& healthy, Operations& all) : healthy_(healthy), now_(all) {}

    MonotonicInstant now() const override {
        now_();
        return healthy_.now();
    }

 private:
    MonotonicClock& healthy_;
    mutable UnaskedOperation<&MonotonicClock::now> now_;
};

}  // namespace norvane

#pragma GCC diagnostic pop
