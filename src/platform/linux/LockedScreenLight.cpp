#include "platform/linux/LockedScreenLight.h"

#include <utility>

namespace norvane {

LockedScreenLight::LockedScreenLight(SessionLock& lock, ScreenLight& light)
    : lock_(lock), light_(light), lockChanges_(lock.onDidChange([this] { lockChanged(); })) {}

Cancellation LockedScreenLight::onLit(std::function<void()> observer) {
    auto added = std::make_shared<Cancellation>(lit_.add(std::move(observer)));
    if (++*waiting_ == 1 && !lock_.isLocked()) waitForLight();
    return Cancellation([this, alive = std::weak_ptr(waiting_), added] {
        added->cancel();
        const auto waiting = alive.lock();
        if (waiting && --*waiting == 0) lightComes_.cancel();
    });
}

void LockedScreenLight::lockChanged() {
    if (lock_.isLocked()) {
        lightComes_.cancel();
        return;
    }
    if (*waiting_ == 0) return;
    const bool isLit = light_.isLit();
    waitForLight();
    if (isLit) lit_.tell();
}

void LockedScreenLight::waitForLight() {
    lightComes_ = light_.onLit([this] { lit_.tell(); });
}

}  // namespace norvane
