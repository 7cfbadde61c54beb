#include "platform/linux/Volumes.h"

#include <utility>

namespace norvane {

Volumes::Volumes(RootFolder root, SystemCalls calls) : root_(std::move(root)), calls_(std::move(calls)) {}

std::optional<std::vector<VolumeURL>> Volumes::read() {
    return std::nullopt;
}

}  // namespace norvane
