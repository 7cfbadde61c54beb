#include "platform/linux/DiskDrivers.h"

#include <utility>

namespace norvane {

DiskDrivers::DiskDrivers(RootFolder root) : root_(std::move(root)) {}

std::optional<std::vector<RegistryEntry>> DiskDrivers::match() {
    return std::vector<RegistryEntry>();
}

}  // namespace norvane
