#include "SoakMachine.h"

#include <algorithm>
#include <chrono>
#include <vector>

namespace norvane {
namespace {

constexpr double kMB = 1'048'576;
constexpr std::int64_t kGB = 1'000'000'000;

std::uint64_t pagesOf(double gigabytes) {
    return static_cast<std::uint64_t>(gigabytes * 262'144);
}

}  // namespace

SoakMachine::SoakMachine(Chance& chance) : chance_(chance) {
    scripted.sysctl.number(SysctlNumber::hw_perflevel0_logicalcpu).always(4);
    scripted.sysctl.number(SysctlNumber::hw_perflevel1_logicalcpu).always(4);
    scripted.sysctl.number(SysctlNumber::hw_logicalcpu).always(8);
    scripted.hostPort.processors.setCount(8);
    answer();
}

Platform SoakMachine::platform() {
    Platform healthy = scripted.platform();
    return {.wallClock = wallClock_,
            .monotonicClock = healthy.monotonicClock,
            .dispatch = healthy.dispatch,
            .hostPort = hostPort_,
            .sysctl = sysctl_,
            .processInfo = processInfo_,
            .registry = registry_,
            .powerSources = powerSources_,
            .fileManager = fileManager_,
            .userNotificationCenter = notifications,
            .standardOutput = healthy.standardOutput,
            .loginItem = healthy.loginItem,
            .workspace = healthy.workspace,
            .mainBundle = healthy.mainBundle,
            .userDefaults = defaults_,
            .uuidSource = uuids_,
            .textRuler = healthy.textRuler,
            .appearance = healthy.appearance,
            .windowServer = windowServer,
            .application = healthy.application};
}

double SoakMachine::secondsAwake() const {
    return std::chrono::duration<double>(scripted.time.monotonic().time_since_epoch()).count();
}

// Every answer is worked out when it is asked for. None is empty: a fault may want something to spoil.
void SoakMachine::answer() {
    scripted.processInfo.thermal.from([this] {
        // The last question of the light half. Who looks at it asks it again.
        if (onLightHalf && !std::exchange(isLooking_, true)) {
            onLightHalf();
            isLooking_ = false;
        }
        return life_.thermal;
    });
    scripted.hostPort.processorInfo.from([this] {
        if (onFullHalf) onFullHalf();
        return std::optional(scripted.hostPort.processors.each());
    });
    scripted.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).from([this] {
        return std::optional(life_.pressure);
    });
    scripted.sysctl.swapUsage.from([this] {
        return std::optional(XswUsage{8ULL << 30, 0, static_cast<std::uint64_t>(life_.swapGB * 0x1p30)});
    });
    scripted.hostPort.statistics64.from([this] {
        const auto swapped = static_cast<std::uint64_t>(life_.swapMBps * 256 * secondsAwake());
        return std::optional(VMStatistics64{.wire_count = pagesOf(2),
                                            .active_count = pagesOf(5),
                                            .compressor_page_count = pagesOf(life_.compressedGB),
                                            .external_page_count = pagesOf(3),
                                            .purgeable_count = pagesOf(1),
                                            .swapins = swapped,
                                            .swapouts = swapped});
    });
    scripted.registry.services(RegistryService::IOBlockStorageDriver).from([this] {
        const auto bytes = static_cast<std::int64_t>(life_.diskMBps * kMB * secondsAwake());
        return std::optional(Services{RegistryEntry(
            {{"Statistics", PropertyDictionary{{"Bytes (Read)", bytes}, {"Bytes (Write)", bytes}}}})});
    });
    scripted.registry.services(RegistryService::IOAccelerator).from([this] {
        return std::optional(serviceWith("PerformanceStatistics", {"Device Utilization %"}, life_.gpu));
    });
    scripted.registry.services(RegistryService::AppleSmartBattery).from([this] {
        return std::optional(Services{RegistryEntry({{"DesignCapacity", 5'100},
                                                     {"AppleRawMaxCapacity", 4'800},
                                                     {"AppleRawCurrentCapacity", 48 * life_.charge},
                                                     {"MaxCapacity", 100},
                                                     {"CurrentCapacity", life_.charge},
                                                     {"CycleCount", 312},
                                                     {"Temperature", life_.heat},
                                                     {"ExternalConnected", life_.isPluggedIn},
                                                     {"IsCharging", life_.isPluggedIn}})});
    });
    scripted.powerSources.sources.always({{PropertyDictionary{
        {"Is Charged", false}, {"Time to Empty", 135}, {"BatteryHealthCondition", "Normal"}}}});
    scripted.fileManager.volumes.from([this] { return std::optional(volumes()); });
    scripted.fileManager.removable.from([this] { return std::optional(volumes()); });
}

std::vector<VolumeURL> SoakMachine::volumes() const {
    std::vector<VolumeURL> volumes{
        {"/", VolumeResourceValues{"System", 500 * kGB, life_.freeGB * kGB, true, true, false}}};
    for (std::size_t i = 0; i < life_.sticks; ++i)
        volumes.push_back({"/media/ada/STICK" + std::to_string(i),
                           VolumeResourceValues{{}, 64 * kGB, 14 * kGB, false, false, true}});
    return volumes;
}

void SoakMachine::change() {
    const auto become = [this](auto& quantity, std::initializer_list<double> values) {
        quantity = static_cast<std::remove_reference_t<decltype(quantity)>>(
            values.begin()[chance_.below(values.size())]);
    };
    double load = 0;
    switch (chance_.below(16)) {
        default:  // what changes most often
            become(load, {0, 3, 10, 30, 58, 64, 70, 84, 86, 100});
            scripted.hostPort.processors.setLoad(load);
            return;
        case 1:
            become(load, {0, 20, 45, 60, 80, 100});
            scripted.hostPort.processors.setLoad(chance_.below(8), load);
            return;
        case 2:
            return become(life_.thermal, {0, 0, 0, 1, 2, 3});
        case 3:
            return become(life_.pressure, {1, 1, 2, 4});
        case 4:
            return become(life_.compressedGB, {0, 1, 3, 5});
        case 5:
            become(life_.swapGB, {0, 0.5, 1.2, 2});
            return become(life_.swapMBps, {0, 0, 3, 8, 20});
        case 6:
            return become(life_.diskMBps, {0, 5, 90, 150, 300});
        case 7:
            return become(life_.gpu, {0, 20, 41, 61, 81, 100});
        case 8:
            return become(life_.freeGB, {4, 11, 19, 24, 31, 33, 60, 300});
        case 9:
            return become(life_.charge, {3, 15, 19, 21, 50, 100});
        case 10:
            return become(life_.heat, {2'500, 3'300, 3'600});
        case 11:
            return become(life_.isPluggedIn, {0, 1});
        case 12:
            become(life_.sticks, {0, 1, 2});
            scripted.workspace.tellMounted();
            scripted.workspace.tellUnmounted();
            return;
        case 13:
            scripted.processInfo.lowPower.always(chance_.oneIn(2));
            return;
    }
}

std::string SoakMachine::strike() {
    AnyOperation* operation = nullptr;
    std::vector<std::string> faults;
    while (faults.empty()) {
        operation = chance_.oneOf(operations_);
        faults = operation->faultNames();
    }
    const std::size_t fault = chance_.below(faults.size());
    operation->fail(fault);
    std::erase(struck_, operation);
    struck_.push_back(operation);
    ++strikes;
    return operation->name() + " " + faults[fault];
}

void SoakMachine::eachFault(const std::function<void(bool isSlow)>& live) {
    for (AnyOperation* const operation : operations_) {
        const std::size_t count = operation->faultNames().size();
        for (std::size_t fault = 0; fault < count; ++fault, ++strikes) {
            operation->fail(fault);
            live(operation->name() == "mountedVolumeURLs");
        }
        operation->recover();
    }
}

void SoakMachine::mend() {
    if (struck_.empty()) return;
    struck_.front()->recover();
    struck_.erase(struck_.begin());
}

void SoakMachine::calmDown() {
    while (!struck_.empty())
        mend();
    life_ = {};
    scripted.hostPort.processors.setLoad(3);
    scripted.processInfo.lowPower.always(false);
    scripted.workspace.ejectionErrors.clear();
    scripted.workspace.ejectionTime = {};
    scripted.loginItem.letGo();
    scripted.loginItem.delay = {};
    scripted.loginItem.currentStatus = 0;
    scripted.loginItem.registerError.always(std::nullopt);
    scripted.userNotificationCenter.error.always(std::nullopt);
    scripted.userNotificationCenter.status.always(NotificationAuthorization::authorized);
}

void SoakMachine::forget() {
    const auto release = [](auto&... lists) {
        (lists.clear(), ...);
        (lists.shrink_to_fit(), ...);
    };
    release(scripted.hostPort.tokens, scripted.userNotificationCenter.added,
            scripted.userNotificationCenter.shown, scripted.standardOutput.lines,
            scripted.userDefaults.written, scripted.userDefaults.removed, scripted.workspace.opened,
            scripted.workspace.ejected, scripted.loginItem.calls, defaults_.otherKeys);
}

}  // namespace norvane
