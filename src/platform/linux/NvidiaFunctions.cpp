#include "platform/linux/NvidiaFunctions.h"

#include <dlfcn.h>

namespace norvane {

namespace {

// Whether the library has the function.
template <typename Result, typename... Arguments>
bool find(void* library, const char* name, std::function<Result(Arguments...)>& function) {
    void* const found = ::dlsym(library, name);
    if (found == nullptr) return false;
    function = reinterpret_cast<Result (*)(Arguments...)>(found);
    return true;
}

}  // namespace

std::optional<NvidiaFunctions> NvidiaFunctions::load() {
    void* const library = ::dlopen("libnvidia-ml.so.1", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return std::nullopt;
    NvidiaFunctions functions;
    const bool isComplete =
        find(library, "nvmlInit_v2", functions.nvmlInit_v2) &&
        find(library, "nvmlShutdown", functions.nvmlShutdown) &&
        find(library, "nvmlDeviceGetHandleByPciBusId_v2", functions.nvmlDeviceGetHandleByPciBusId_v2) &&
        find(library, "nvmlDeviceGetUtilizationRates", functions.nvmlDeviceGetUtilizationRates);
    if (!isComplete) return std::nullopt;
    return functions;
}

}  // namespace norvane
