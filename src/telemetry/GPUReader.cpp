#include "telemetry/GPUReader.h"

#include <cstdint>
#include <initializer_list>
#include <optional>

namespace norvane {
namespace {

// What the device says; none for one that says nothing, which must not pull the mean down.
std::optional<std::int64_t> utilizationOf(const RegistryEntry& accelerator) {
    const PropertyValue* const property =
        accelerator.IORegistryEntryCreateCFProperty("PerformanceStatistics");
    const PropertyDictionary* const statistics = property != nullptr ? property->dictionary() : nullptr;
    if (statistics == nullptr) return std::nullopt;
    for (const char* const name : {"Device Utilization %", "GPU Activity(%)"}) {
        const PropertyValue* const value = statistics->find(name);
        const auto percent = value != nullptr ? value->wholeNumber() : std::nullopt;
        if (percent) return percent;
    }
    return std::nullopt;
}

}  // namespace

double GPUReader::readGPUUtilization(TickToken tick) {
    const auto accelerators = registry_.IOServiceGetMatchingServices(RegistryService::IOAccelerator, tick);
    if (!accelerators) return 0;
    double sum = 0;
    double count = 0;
    for (const RegistryEntry& accelerator : *accelerators) {
        const auto percent = utilizationOf(accelerator);
        if (!percent) continue;
        sum += static_cast<double>(*percent);
        count += 1;
    }
    return count > 0 ? sum / count : 0;
}

}  // namespace norvane
