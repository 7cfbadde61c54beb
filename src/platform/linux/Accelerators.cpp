#include "platform/linux/Accelerators.h"

#include <utility>

namespace norvane {

Accelerators::Accelerators(RootFolder root, SystemCalls calls)
    : root_(std::move(root)), calls_(std::move(calls)) {}

std::vector<RegistryEntry> Accelerators::read() {
    return {};
}

}  // namespace norvane
