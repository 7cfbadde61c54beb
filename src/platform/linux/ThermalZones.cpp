#include "platform/linux/ThermalZones.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/KernelText.h"
#include "platform/linux/SmallFiles.h"

namespace norvane {

namespace {

bool startsWith(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::optional<MilliCelsius> temperatureIn(const std::optional<std::string_view>& text) {
    const auto temperature = text ? parseSignedNumber(*text) : std::nullopt;
    if (!temperature || !isPlausibleTemperature(*temperature)) return std::nullopt;
    return temperature;
}

// A radio's temperature is its own affair, and the platform's policy zone shows a made-up one.
bool isOfUse(std::string_view zoneType) {
    return !startsWith(zoneType, "iwlwifi") && !startsWith(zoneType, "INT3400");
}

// Not fans, displays, settings in the guise of devices, nor the injected idling that reports -1 at rest.
bool isLimiting(std::string_view deviceType) {
    constexpr std::array<std::string_view, 4> kPrefixes{"cpufreq", "thermal-cpufreq", "thermal-devfreq",
                                                        "devfreq"};
    return deviceType == "Processor" || std::any_of(kPrefixes.begin(), kPrefixes.end(), [&](auto prefix) {
               return startsWith(deviceType, prefix);
           });
}

}  // namespace

ThermalZones::ThermalZones(RootFolder root, std::function<MonotonicInstant()> now)
    : root_(std::move(root)), now_(std::move(now)) {}

bool ThermalZones::isDue(const Answer& newest, MonotonicInstant now) {
    return newest.hasSources || !newest.readAt || now - *newest.readAt >= kLookAgain;
}

ThermalZones::Answer ThermalZones::read() {
    const MonotonicInstant now = now_();
    if (!lookedAt_ || somethingHasGone_ || now - *lookedAt_ >= kLookAgain) {
        lookedAt_ = now;
        somethingHasGone_ = false;
        look();
    }

    Answer answer;
    answer.readAt = now;
    answer.hasSources = !zones_.empty() || !packages_.empty() || !coreSensors_.empty();
    bool anyZoneAnswered = false;
    for (Zone& zone : zones_) {
        const auto temperature = temperatureIn(readFound(zone.temp));
        if (!temperature) continue;
        anyZoneAnswered = true;
        answer.level = std::max(answer.level, zoneLevel(zone, *temperature));
    }
    for (Package& package : packages_)
        answer.level = std::max(answer.level, packageLevel(package));
    if (!anyZoneAnswered) {
        for (CoreSensor& sensor : coreSensors_)
            answer.level = std::max(answer.level, coreSensorLevel(sensor));
    }
    return answer;
}

void ThermalZones::look() {
    zones_.clear();
    const std::string folder = "/sys/class/thermal/";
    for (const std::string& name : root_.names(folder)) {
        if (!numberAfter("thermal_zone", name)) continue;
        if (auto zone = lookAtZone(folder + name + '/')) zones_.push_back(std::move(*zone));
    }
    lookForPackages();
    lookForCoreSensors();
}

std::optional<ThermalZones::Zone> ThermalZones::lookAtZone(const std::string& folder) const {
    if (!isOfUse(textOf(root_, folder + "type")) || textOf(root_, folder + "mode") == "disabled") {
        return std::nullopt;
    }
    Zone zone{KeptFile(root_, folder + "temp"), {}, {}};
    // A zone that never has the file would have us look again at every reading.
    if (zone.temp.read(); !zone.temp.exists()) return std::nullopt;

    for (const std::string& name : root_.names(folder)) {
        constexpr std::string_view kTemp = "_temp";
        if (startsWith(name, "trip_point_") && std::string_view(name).ends_with(kTemp)) {
            const std::string trip = folder + name.substr(0, name.size() - kTemp.size());
            const auto temperature = numberOf(root_, trip + "_temp");
            if (temperature) zone.trips.add(textOf(root_, trip + "_type"), *temperature);
        } else if (numberAfter("cdev", name)) {
            const std::string device = folder + name + '/';
            const auto maxState = numberOf(root_, device + "max_state");
            if (!maxState || *maxState <= 0 || !isLimiting(textOf(root_, device + "type"))) continue;
            zone.limitingDevices.push_back({KeptFile(root_, device + "cur_state"), *maxState});
        }
    }
    if (zone.trips.empty()) return std::nullopt;
    return zone;
}

void ThermalZones::lookForPackages() {
    const std::vector<Package> before = std::exchange(packages_, {});
    const std::string folder = "/sys/devices/system/cpu/";
    std::vector<std::pair<unsigned, std::string>> processors;
    for (const std::string& name : root_.names(folder)) {
        if (const auto number = numberAfter("cpu", name)) processors.emplace_back(*number, name);
    }
    std::sort(processors.begin(), processors.end());
    for (const auto& [number, name] : processors) {
        KeptFile file(root_, folder + name + "/thermal_throttle/package_throttle_total_time_ms");
        if (file.read(); !file.exists()) continue;
        const std::int64_t id = numberOf(root_, folder + name + "/topology/physical_package_id").value_or(0);
        const auto isThis = [id = id](const Package& package) { return package.id == id; };
        if (std::any_of(packages_.begin(), packages_.end(), isThis)) continue;

        Package package{id, std::move(file), {}};
        const auto known = std::find_if(before.begin(), before.end(), isThis);
        // Each processor counts for itself, so what another one said is nothing to compare with.
        if (known != before.end() && known->throttledTime.path() == package.throttledTime.path()) {
            package.last = known->last;
        }
        packages_.push_back(std::move(package));
    }
}

void ThermalZones::lookForCoreSensors() {
    coreSensors_.clear();
    const std::string folder = "/sys/class/hwmon/";
    for (const std::string& name : root_.names(folder)) {
        const std::string device = folder + name + '/';
        if (textOf(root_, device + "name") != "coretemp") continue;
        for (const std::string& entry : root_.names(device)) {
            constexpr std::string_view kInput = "_input";
            if (!startsWith(entry, "temp") || !std::string_view(entry).ends_with(kInput)) continue;
            const std::string sensor = device + entry.substr(0, entry.size() - kInput.size());
            const auto crit = numberOf(root_, sensor + "_crit");
            if (!crit || *crit < 40'000 || *crit > 150'000) continue;
            KeptFile input(root_, device + entry);
            if (input.read(); input.exists()) coreSensors_.push_back({std::move(input), *crit});
        }
    }
}

int ThermalZones::zoneLevel(Zone& zone, MilliCelsius temperature) {
    // Such a device alone proves nothing: a daemon may hold it back at 40 °C.
    return zone.trips.level(temperature, [&] {
        return std::any_of(zone.limitingDevices.begin(), zone.limitingDevices.end(),
                           [](LimitingDevice& device) {
                               const auto text = device.curState.read();
                               const auto state = text ? parseSignedNumber(*text) : std::nullopt;
                               return state && *state >= device.maxState - device.maxState / 2;
                           });
    });
}

int ThermalZones::packageLevel(Package& package) {
    // Time, not events: healthy laptops throttle for moments, hundreds of times a day ("Intel thermal
    // throttle events reporting").
    const auto text = readFound(package.throttledTime);
    const auto milliseconds = text ? parseNumber(*text) : std::nullopt;
    if (!milliseconds) return 0;
    const Package::Reading reading{*milliseconds, now_()};
    const auto last = std::exchange(package.last, reading);
    if (!last || reading.milliseconds <= last->milliseconds || reading.at <= last->at) return 0;
    const auto throttled = static_cast<double>(reading.milliseconds - last->milliseconds);
    const double elapsed = std::chrono::duration<double, std::milli>(reading.at - last->at).count();
    if (throttled >= elapsed * 0.5) return 2;
    return throttled >= elapsed * 0.05 ? 1 : 0;
}

int ThermalZones::coreSensorLevel(CoreSensor& sensor) {
    const auto temperature = temperatureIn(readFound(sensor.input));
    if (!temperature) return 0;
    if (*temperature >= sensor.crit) return 2;
    return *temperature >= sensor.crit - 10'000 ? 1 : 0;
}

std::optional<std::string_view> ThermalZones::readFound(KeptFile& file) {
    const auto text = file.read();
    if (!file.exists()) somethingHasGone_ = true;
    return text;
}

}  // namespace norvane
