#pragma once

#include <functional>
#include <optional>

namespace norvane {

// What is used of the driver's management library, under the names and with the types of the "NVML API
// Reference Guide". All give 0 for success.
struct NvidiaFunctions {
    using Device = void*;
    // Percent of the time of the last sample that the device, or its memory, was in use.
    struct Utilization {
        unsigned int gpu = 0;
        unsigned int memory = 0;
    };

    std::function<int()> nvmlInit_v2;
    std::function<int()> nvmlShutdown;
    // By PCI slot, "0000:01:00.0".
    std::function<int(const char* pciBusId, Device* device)> nvmlDeviceGetHandleByPciBusId_v2;
    std::function<int(Device device, Utilization* utilization)> nvmlDeviceGetUtilizationRates;

    // Loads the library, which then stays loaded: it has threads of its own. None where it is missing or
    // lacks a function. Loading alone does not touch a device.
    static std::optional<NvidiaFunctions> load();
};

}  // namespace norvane
