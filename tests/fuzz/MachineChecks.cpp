#include <algorithm>
#include <array>
#include <chrono>
#include <set>

#include "Checks.h"
#include "MachineInput.h"
#include "platform/linux/Batteries.h"
#include "platform/linux/KernelText.h"
#include "platform/linux/MemoryFigures.h"
#include "platform/linux/MemoryPressureLevel.h"
#include "platform/linux/ThermalTrips.h"
#include "platform/linux/ThermalZones.h"
#include "platform/linux/VolumeMounts.h"
#include "platform/linux/VolumeRules.h"
#include "Property.h"

namespace norvane {
namespace {

// Each line is a trip: its kind and its temperature.
void checkThermalTrips(std::string_view text) {
    ThermalTrips trips;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view type = takeWord(line);
        if (const auto temperature = parseSignedNumber(line)) trips.add(type, *temperature);
    }
    int before = 0;
    for (MilliCelsius temperature = -25'000; temperature <= 155'000; temperature += 500) {
        const int level = trips.level(temperature, [] { return false; });
        const int limited = trips.level(temperature, [] { return true; });
        require(before <= level && level <= limited && limited <= 3, "none is lower for heat or a limit");
        require(limited == 0 || (temperature >= 25'000 && !trips.empty()), "what is cool is nominal");
        before = level;
    }
}

void checkThermalZones(std::string_view text) {
    MachineInput machine(text);
    MonotonicInstant now{std::chrono::hours(1)};
    ThermalZones zones(machine.root(), [&now] { return now; });
    for (const int seconds : {0, 3, 3, 70, -100}) {  // the last: a clock that steps back
        now += std::chrono::seconds(seconds);
        const ThermalZones::Answer answer = zones.read();
        require(answer.level >= 0 && answer.level <= (answer.hasSources ? 3 : 0),
                "levels are 0 to 3, and a machine that tells nothing is nominal");
        require(answer.readAt == now, "an answer has its time");
        machine.goOn();
    }
}

// What a battery tells: whole numbers within bounds. Those that it always tells are the first two of each.
struct Count {
    const char* name;
    std::int64_t least, most;
};
constexpr std::array kOfService{
    Count{"AppleRawMaxCapacity", 0, INT64_MAX}, Count{"AppleRawCurrentCapacity", 0, INT64_MAX},
    Count{"DesignCapacity", 0, INT64_MAX},      Count{"CurrentCapacity", 0, 1000},
    Count{"MaxCapacity", 1000, 1000},           Count{"CycleCount", 1, INT64_MAX},
    Count{"Temperature", -4000, 12000}};
constexpr std::array kOfSource{Count{"Time to Empty", -1, 24L * 60},
                               Count{"Time to Full Charge", -1, 20L * 60}};

template <std::size_t size>
void checkCounts(const PropertyDictionary& told, const std::array<Count, size>& counts) {
    for (const Count& count : counts) {
        const PropertyValue* const value = told.find(count.name);
        require(value != nullptr || &count > &counts[1], "the first two are there");
        const auto number = value != nullptr ? value->wholeNumber() : count.least;
        require(number && *number >= count.least && *number <= count.most, "a count is within its bounds");
    }
}

void checkBatteries(std::string_view text) {
    MachineInput machine(text);
    MonotonicInstant now{std::chrono::hours(1)};
    Batteries batteries(machine.root(), [&now] { return now; });
    for (const int seconds : {0, 5, 30, -40}) {  // the last: a clock that steps back
        now += std::chrono::seconds(seconds);
        const Batteries::Answer answer = batteries.read();
        require(answer.services.size() == answer.sources.size() && answer.services.size() <= 1,
                "one service and one source, or neither");
        require(answer.services.empty() || answer.hasSupplies, "a battery is a supply");
        machine.goOn();
        if (answer.services.empty()) continue;
        const PropertyDictionary& service = *answer.services[0].IORegistryEntryCreateCFProperties();
        const PropertyDictionary& source = *answer.sources[0];
        checkCounts(service, kOfService);
        checkCounts(source, kOfSource);
        require((service.find("CurrentCapacity") != nullptr) == (service.find("MaxCapacity") != nullptr),
                "the pair is there or it is not");
        require(service.find("IsCharging")->boolean() && source.find("Is Charged")->boolean(),
                "a battery is charged or not, and full or not");
        const auto toEmpty = source.find("Time to Empty")->wholeNumber();
        const auto toFull = source.find("Time to Full Charge")->wholeNumber();
        require(toEmpty == -1 || toFull == -1, "nothing becomes full and empty");
        require(seconds != 0 || toEmpty == toFull, "one reading tells no time");
        const std::string& health = *source.find("BatteryHealthCondition")->text();
        require(health == "Normal" || health == "Service Recommended", "a battery is in order or not");
    }
}

void checkVolumes(std::string_view text) {
    const MachineInput machine(text);
    const auto mounts = readVolumeMounts(machine.root());
    if (!mounts) return;
    std::set<std::string> fileSystems;
    auto place = mounts->table.begin();
    for (const VolumeMount& volume : mounts->volumes) {
        const Mount& mount = volume.mount;
        place = std::find(place, mounts->table.end(), mount);
        require(place != mounts->table.end(), "volumes are mounted, in the order of the table");
        require(isVolume(mount, {}) || isVolume(mount, {false, true}), "a volume is one by the rules");
        require(mount.type != "autofs", "nothing is mounted by looking");
        require(!volume.name || !volume.name->empty(), "a name is not empty");
        require(volume.isInternal != false || volume.isEjectable, "what is plugged in can be unplugged");
        const FileSystemKind kind = fileSystemKind(mount.type);
        require(!volume.isInternal || kind == FileSystemKind::disk, "a server is neither inside nor outside");
        require(!isCompositeType(mount.type) || kind == FileSystemKind::other, "an image is no disk");
        const bool isElsewhere = kind == FileSystemKind::network || kind == FileSystemKind::userSpace;
        require(mayHang(mount) == isElsewhere || mount.point == "/", "who may be waited for is known");
        const bool isPool = mount.type == "zfs";
        const std::string key = isPool ? mount.source.substr(0, mount.source.find('/')) : mount.device.text();
        require(fileSystems.insert(key).second, "each file system is there once");
    }
}

// The parts between lines "===": meminfo, arcstats, the pressure of memory.
void checkMemoryFigures(std::string_view text) {
    constexpr std::string_view kSeparator = "===\n";
    std::array<std::string_view, 3> parts;
    for (std::string_view& part : parts) {
        part = text.substr(0, text.find(kSeparator));
        text.remove_prefix(std::min(part.size() + kSeparator.size(), text.size()));
    }
    const MemInfo info = parseMemInfo(parts[0]);
    const auto pressure = parsePressure(parts[2]);
    for (const std::uint64_t zramBytes : {std::uint64_t{0}, std::uint64_t{1} << 30, UINT64_MAX}) {
        auto figures = memoryFigures(info, parseArcStats(parts[1]), zramBytes);
        require(figures.has_value() == (info.memTotal.value_or(0) > 0), "figures need a total, and no more");
        if (!figures) continue;
        require(figures->available <= figures->total, "no more is available than there is");
        require(figures->compressed <= figures->used() &&
                    figures->programs <= figures->used() - figures->compressed &&
                    figures->wired == figures->used() - figures->compressed - figures->programs,
                "the three parts are what is used");
        const int level = memoryPressureLevel(*figures, pressure);
        require(level == 1 || level == 2 || level == 4, "a level is one of three");
        require(level >= memoryPressureLevel(*figures, {}), "stalls make nothing better");
        figures->available = figures->total;
        require(memoryPressureLevel(*figures, pressure) <= level, "nor does room make it worse");
    }
}

}  // namespace

Checks machineChecks() {
    return {{"Batteries", checkBatteries},
            {"MemoryFigures", checkMemoryFigures},
            {"ThermalTrips", checkThermalTrips},
            {"ThermalZones", checkThermalZones},
            {"Volumes", checkVolumes}};
}

}  // namespace norvane
