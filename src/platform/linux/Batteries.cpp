#include "platform/linux/Batteries.h"

#include <utility>

namespace norvane {

Batteries::Batteries(RootFolder root, std::function<MonotonicInstant()> now)
    : root_(std::move(root)), now_(std::move(now)) {}

Batteries::Answer Batteries::read() {
    return {};
}

}  // namespace norvane
