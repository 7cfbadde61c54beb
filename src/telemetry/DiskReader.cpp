#include "telemetry/DiskReader.h"

#include <string_view>

#include "telemetry/Units.h"

namespace norvane {
namespace {

// The counter of that name; 0 where it is missing or not an unsigned number.
std::uint64_t counterIn(const PropertyDictionary& statistics, std::string_view name) {
    const PropertyValue* const value = statistics.find(name);
    const auto number = value != nullptr ? value->wholeNumber() : std::nullopt;
    return number && *number > 0 ? static_cast<std::uint64_t>(*number) : 0;
}

double megabytes(std::uint64_t before, std::uint64_t now) {
    return now > before ? static_cast<double>(now - before) / kBytesPerMB : 0;
}

}  // namespace

DiskVelocity DiskReader::readDiskVelocity(TickToken tick) {
    const auto drivers = registry_.IOServiceGetMatchingServices(RegistryService::IOBlockStorageDriver, tick);
    if (!drivers) return {};

    std::uint64_t readTotal = 0;
    std::uint64_t writeTotal = 0;
    for (const RegistryEntry& driver : *drivers) {
        const PropertyValue* const property = driver.IORegistryEntryCreateCFProperty("Statistics");
        const PropertyDictionary* const statistics = property != nullptr ? property->dictionary() : nullptr;
        if (statistics == nullptr) continue;
        readTotal += counterIn(*statistics, "Bytes (Read)");
        writeTotal += counterIn(*statistics, "Bytes (Write)");
    }

    DiskVelocity velocity;
    if (const auto elapsed = interval_.sampled(wallClock_.CFAbsoluteTimeGetCurrent())) {
        velocity.readMBps = megabytes(lastDiskReadBytes_, readTotal) / *elapsed;
        velocity.writeMBps = megabytes(lastDiskWriteBytes_, writeTotal) / *elapsed;
    }
    lastDiskReadBytes_ = readTotal;
    lastDiskWriteBytes_ = writeTotal;
    return velocity;
}

}  // namespace norvane
