#pragma once

#include <optional>
#include <vector>

#include "platform/linux/RootFolder.h"
#include "platform/RegistryEntry.h"
#include "platform/TickToken.h"

namespace norvane {

// The machine's drives as the kernel counts their traffic. Sampler's queue only; answers at once.
class DiskDrivers {
 public:
    explicit DiskDrivers(RootFolder root);

    // A service for each physical drive. No value where the counters cannot be read.
    std::optional<std::vector<RegistryEntry>> match();

 private:
    RootFolder root_;
};

}  // namespace norvane
