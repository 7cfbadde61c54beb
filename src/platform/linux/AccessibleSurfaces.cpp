#include "platform/linux/AccessibleSurfaces.h"

#include <utility>

namespace norvane {

Cancellation AccessibleSurfaces::add(AccessibleSurface surface) {
    const std::uint64_t number = ++lastNumber_;
    surfaces_->emplace(number, std::move(surface));
    observers_.tell();
    return Cancellation([number, surfaces = std::weak_ptr(surfaces_), observers = observers_] {
        const auto alive = surfaces.lock();
        if (!alive) return;
        const auto gone = alive->extract(number);
        observers.tell();
    });
}

}  // namespace norvane
