#include "scenario/PlayedMachine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "preferences/DefaultsKeys.h"
#include "scenario/Objection.h"
#include "telemetry/Units.h"

namespace norvane {
namespace {

constexpr std::size_t kMostProcessors = 4096;
constexpr double kMostGB = 1e9;
constexpr double kMostMBps = 1e9;
// Where the scripted machine counts by itself after an exact answer or a failure.
constexpr std::string_view kCounted = "counted";

Given::Taker into(std::string_view name, std::uint32_t& number) {
    return {name, [&number](const Given& given) { number = given.whole<std::uint32_t>(); }};
}
Given::Taker into(std::string_view name, std::uint64_t& number) {
    return {name, [&number](const Given& given) { number = given.whole<std::uint64_t>(); }};
}

void takeTicksInto(HostCPULoadInfo& ticks, const Given& given) {
    given.takeMembers({into("user", ticks.user), into("system", ticks.system), into("idle", ticks.idle),
                       into("nice", ticks.nice)});
}

}  // namespace

const PlayedMachine::Answer PlayedMachine::kAnswers[] = {
    {"processors", &PlayedMachine::takeProcessors},
    {"load", &PlayedMachine::takeLoad},
    {"host_statistics", &PlayedMachine::takeTicks},
    {"host_processor_info", &PlayedMachine::takeProcessorTicks},
    {"host_statistics64", &PlayedMachine::takePages},
    {"host_page_size", &PlayedMachine::takePageSize},
    {"memory", &PlayedMachine::takeMemory},
    {"vm.swapusage", &PlayedMachine::takeSwapUsage},
    {"physicalMemory", &PlayedMachine::takePhysicalMemory},
    {"thermalState", &PlayedMachine::takeThermalState},
    {"systemUptime", &PlayedMachine::takeUptime},
    {"isLowPowerModeEnabled", &PlayedMachine::takeLowPowerMode},
    {"disk", &PlayedMachine::takeDisk},
    {"IOBlockStorageDriver", &PlayedMachine::takeDrivers},
    {"IOAccelerator", &PlayedMachine::takeAccelerators},
    {"AppleSmartBattery", &PlayedMachine::takeBatteries},
    {"IOPSCopyPowerSourcesInfo", &PlayedMachine::takePowerSources},
    {"mountedVolumeURLs", &PlayedMachine::takeVolumes},
    {"preference", &PlayedMachine::takePreference},
    {"notifications", &PlayedMachine::takeNotifications},
    {"authorization", &PlayedMachine::takeAuthorization},
};

PlayedMachine::PlayedMachine() {
    scripted.hostPort.statistics64.from([this] { return pages(); });
}

bool PlayedMachine::answer(std::string_view name, const Given& given) {
    const auto found = std::find_if(std::begin(kAnswers), std::end(kAnswers),
                                    [&](const Answer& answer) { return answer.name == name; });
    if (found == std::end(kAnswers)) return takeSysctl(name, given);
    (this->*found->take)(given);
    return true;
}

// --- Processors ---

void PlayedMachine::takeProcessors(const Given& given) {
    scripted.hostPort.processors.setCount(given.whole<std::size_t>(0, kMostProcessors));
}

void PlayedMachine::takeLoad(const Given& given) {
    ScriptedProcessors& processors = scripted.hostPort.processors;
    if (!given.isList()) {
        processors.setLoad(given.finite(0, 100));
        return;
    }
    const std::vector<Given> loads = given.items();
    if (loads.size() != processors.each().processorCount) {
        given.refuse("a load for each of the " + std::to_string(processors.each().processorCount) +
                     " processors");
    }
    for (std::size_t i = 0; i < loads.size(); ++i)
        processors.setLoad(i, loads[i].finite(0, 100));
}

void PlayedMachine::takeTicks(const Given& given) {
    ScriptedHostPort& host = scripted.hostPort;
    if (given.isNull()) {
        host.statistics.always(std::nullopt);
    } else if (given.says(kCounted)) {
        host.statistics.from([&host] { return std::optional(host.processors.total()); });
    } else {
        takeTicksInto(ticks_, given);
        host.statistics.always(ticks_);
    }
}

void PlayedMachine::takeProcessorTicks(const Given& given) {
    ScriptedHostPort& host = scripted.hostPort;
    if (given.isNull()) {
        host.processorInfo.always(std::nullopt);
        return;
    }
    if (given.says(kCounted)) {
        host.processorInfo.from([&host] { return std::optional(host.processors.each()); });
        return;
    }
    ProcessorInfo info;
    for (const Given& processor : given.items()) {
        HostCPULoadInfo ticks;
        takeTicksInto(ticks, processor);
        for (const std::uint32_t entry : {ticks.user, ticks.system, ticks.idle, ticks.nice})
            info.ticks.push_back(static_cast<std::int32_t>(entry));
        ++info.processorCount;
    }
    host.processorInfo.always(std::move(info));
}

// --- Memory ---

std::optional<VMStatistics64> PlayedMachine::pages() const {
    if (!arePagesReadable_) return std::nullopt;
    VMStatistics64 pages = pages_;
    pages.swapins = swapins_.total();
    pages.swapouts = swapouts_.total();
    return pages;
}

std::uint64_t PlayedMachine::pagesOf(double gigabytes) const {
    return static_cast<std::uint64_t>(std::llround(gigabytes * kBytesPerGB / static_cast<double>(pageSize_)));
}

void PlayedMachine::takePages(const Given& given) {
    arePagesReadable_ = !given.isNull();
    if (given.isNull()) return;
    given.takeMembers({
        into("wire_count", pages_.wire_count),
        into("active_count", pages_.active_count),
        into("compressor_page_count", pages_.compressor_page_count),
        into("external_page_count", pages_.external_page_count),
        into("purgeable_count", pages_.purgeable_count),
        {"swapins", [this](const Given& pages) { swapins_.set(pages.whole<std::uint64_t>()); }},
        {"swapouts", [this](const Given& pages) { swapouts_.set(pages.whole<std::uint64_t>()); }},
    });
}

void PlayedMachine::takePageSize(const Given& given) {
    pageSize_ = given.whole<std::uint64_t>(1);
    scripted.hostPort.pageSize.always(pageSize_);
}

void PlayedMachine::takeMemory(const Given& given) {
    const auto pages = [this](std::uint64_t& count) {
        return [this, &count](const Given& size) {
            count = pagesOf(size.finite(0, kMostGB));
            arePagesReadable_ = true;
        };
    };
    const auto rate = [this](RunningTotal& total) {
        return [this, &total](const Given& speed) {
            total.setRate(speed.finite(0, kMostMBps) * kBytesPerMB / static_cast<double>(pageSize_));
            arePagesReadable_ = true;
        };
    };
    given.takeMembers({
        {"wiredGB", pages(pages_.wire_count)},
        {"appGB", pages(pages_.active_count)},
        {"compressedGB", pages(pages_.compressor_page_count)},
        {"cachedGB", pages(pages_.external_page_count)},
        {"swapUsedGB",
         [this](const Given& size) {
             swapUsage_.xsu_used =
                 static_cast<std::uint64_t>(std::llround(size.finite(0, kMostGB) * kBytesPerGB));
             scripted.sysctl.swapUsage.always(swapUsage_);
         }},
        {"swapReadMBps", rate(swapins_)},
        {"swapWriteMBps", rate(swapouts_)},
    });
}

void PlayedMachine::takeSwapUsage(const Given& given) {
    if (given.isNull()) {
        scripted.sysctl.swapUsage.always(std::nullopt);
        return;
    }
    given.takeMembers({into("xsu_total", swapUsage_.xsu_total), into("xsu_avail", swapUsage_.xsu_avail),
                       into("xsu_used", swapUsage_.xsu_used)});
    scripted.sysctl.swapUsage.always(swapUsage_);
}

// --- The machine ---

void PlayedMachine::takePhysicalMemory(const Given& given) {
    scripted.processInfo.memory.always(given.whole<std::uint64_t>());
}

void PlayedMachine::takeThermalState(const Given& given) {
    scripted.processInfo.thermal.always(given.whole<int>());
}

void PlayedMachine::takeUptime(const Given& given) {
    if (!given.says(kCounted)) {
        scripted.processInfo.uptime.always(given.real());
        return;
    }
    scripted.processInfo.uptime.from(
        [this] { return std::chrono::duration<double>(scripted.time.uptime()).count(); });
}

void PlayedMachine::takeLowPowerMode(const Given& given) {
    scripted.processInfo.lowPower.always(given.boolean());
}

bool PlayedMachine::takeSysctl(std::string_view name, const Given& given) {
    // The enumerations count up from 0; beyond their ends there are no names.
    for (int i = 0; !nameOf(static_cast<SysctlNumber>(i)).empty(); ++i) {
        const auto number = static_cast<SysctlNumber>(i);
        if (nameOf(number) != name) continue;
        scripted.sysctl.number(number).always(given.isNull() ? std::nullopt
                                                             : std::optional(given.whole<std::int64_t>()));
        return true;
    }
    for (int i = 0; !nameOf(static_cast<SysctlText>(i)).empty(); ++i) {
        const auto text = static_cast<SysctlText>(i);
        if (nameOf(text) != name) continue;
        scripted.sysctl.text(text).always(given.isNull() ? std::nullopt : std::optional(given.text()));
        return true;
    }
    return false;
}

// --- Devices, power sources, volumes ---

void PlayedMachine::change(Sources& sources, const Given& given) {
    if (given.isNull()) {
        sources.reset();
        return;
    }
    if (given.isList()) {
        std::vector<std::optional<PropertyDictionary>> list;
        for (const Given& source : given.items())
            list.push_back(source.isNull() ? std::nullopt : std::optional(source.properties()));
        sources = std::move(list);
        return;
    }
    if (!sources || sources->empty() || !sources->front()) {
        given.refuse("a list: there is none yet of which properties could be changed");
    }
    sources->front() = given.properties(*sources->front());
}

void PlayedMachine::takeServices(RegistryService kind, const Given& given) {
    Sources& sources = services_.try_emplace(kind, std::in_place).first->second;
    change(sources, given);
    ScriptedRegistry::Services services;
    if (sources) {
        services.emplace();
        for (const auto& properties : *sources)
            services->push_back(properties ? RegistryEntry(*properties) : RegistryEntry::unreadable());
    }
    scripted.registry.services(kind).always(std::move(services));
}

void PlayedMachine::takeDrivers(const Given& given) {
    takeServices(RegistryService::IOBlockStorageDriver, given);
}
void PlayedMachine::takeAccelerators(const Given& given) {
    takeServices(RegistryService::IOAccelerator, given);
}
void PlayedMachine::takeBatteries(const Given& given) {
    takeServices(RegistryService::AppleSmartBattery, given);
}

void PlayedMachine::takeDisk(const Given& given) {
    const auto rate = [](RunningTotal& total) {
        return [&total](const Given& speed) { total.setRate(speed.finite(0, kMostMBps) * kBytesPerMB); };
    };
    given.takeMembers({{"readMBps", rate(readBytes_)}, {"writeMBps", rate(writtenBytes_)}});
    scripted.registry.services(RegistryService::IOBlockStorageDriver).from([this] {
        return countingDrivers();
    });
}

ScriptedRegistry::Services PlayedMachine::countingDrivers() const {
    const auto bytes = [](const RunningTotal& total) {
        return PropertyValue(
            std::min<std::uint64_t>(total.total(), std::numeric_limits<std::int64_t>::max()));
    };
    const PropertyDictionary statistics{{"Bytes (Read)", bytes(readBytes_)},
                                        {"Bytes (Write)", bytes(writtenBytes_)}};
    return std::vector{RegistryEntry({{"Statistics", statistics}})};
}

void PlayedMachine::takePowerSources(const Given& given) {
    change(powerSources_, given);
    scripted.powerSources.sources.always(powerSources_);
}

void PlayedMachine::takeVolumes(const Given& given) {
    if (given.isNull()) {
        scripted.fileManager.volumes.always(std::nullopt);
        return;
    }
    std::vector<VolumeURL> volumes;
    for (const auto& [path, values] : given.members()) {
        if (!path.starts_with('/')) throw Objection("\"" + path + "\" is no path: it is to begin with /");
        if (values.isNull()) {
            volumes.emplace_back(path, std::nullopt);
            continue;
        }
        VolumeResourceValues known;
        const auto bytes = [](std::optional<std::int64_t>& value) {
            return [&value](const Given& one) {
                value = one.isNull() ? std::nullopt : std::optional(one.whole<std::int64_t>());
            };
        };
        const auto flag = [](std::optional<bool>& value) {
            return [&value](const Given& one) {
                value = one.isNull() ? std::nullopt : std::optional(one.boolean());
            };
        };
        values.takeMembers({
            {"volumeName",
             [&known](const Given& one) {
                 known.volumeName = one.isNull() ? std::nullopt : std::optional(one.text());
             }},
            {"volumeTotalCapacity", bytes(known.volumeTotalCapacity)},
            {"volumeAvailableCapacity", bytes(known.volumeAvailableCapacity)},
            {"volumeIsInternal", flag(known.volumeIsInternal)},
            {"volumeIsRootFileSystem", flag(known.volumeIsRootFileSystem)},
            {"volumeIsEjectable", flag(known.volumeIsEjectable)},
        });
        volumes.emplace_back(path, std::move(known));
    }
    scripted.fileManager.volumes.always(std::move(volumes));
}

// --- The user's choices and the desktop ---

void PlayedMachine::takePreference(const Given& given) {
    using namespace defaultskey;
    constexpr std::array kKeys{kTemperatureUnit,
                               kMenuBarIconMode,
                               kIsSmartAutoExpandEnabled,
                               kInsightVerbosity,
                               kSustainedLoadNotificationsEnabled,
                               kStorageAlertEnabled,
                               kStorageAlertThresholdGB,
                               kBatteryAlertEnabled,
                               kBatteryAlertThresholdPct,
                               kLastViewedPod,
                               kHasSeenWelcome,
                               kLegacyIsDynamicMenuBarEnabled};
    for (const auto& [key, value] : given.members()) {
        if (std::find(kKeys.begin(), kKeys.end(), key) == kKeys.end()) {
            throw Objection("\"" + key + "\" is no key of the preferences");
        }
        if (value.isNull()) {
            scripted.userDefaults.removeObjectForKey(key);
        } else {
            scripted.userDefaults.changeFromOutside(key, value.defaultsValue());
        }
    }
}

void PlayedMachine::takeNotifications(const Given& given) {
    auto& error = scripted.userNotificationCenter.error;
    if (given.says("delivered")) {
        error.always(std::nullopt);
        return;
    }
    if (!given.isRecord()) given.refuse("\"delivered\" or {\"error\": a text}");
    given.takeMembers({{"error", [&error](const Given& text) { error.always(text.text()); }}});
}

void PlayedMachine::takeAuthorization(const Given& given) {
    constexpr std::pair<std::string_view, NotificationAuthorization> kStatuses[] = {
        {"notDetermined", NotificationAuthorization::notDetermined},
        {"denied", NotificationAuthorization::denied},
        {"authorized", NotificationAuthorization::authorized}};
    for (const auto& [name, status] : kStatuses) {
        if (!given.says(name)) continue;
        scripted.userNotificationCenter.status.always(status);
        scripted.userNotificationCenter.isGranted.always(status == NotificationAuthorization::authorized);
        return;
    }
    given.refuse("\"notDetermined\", \"denied\" or \"authorized\"");
}

}  // namespace norvane
