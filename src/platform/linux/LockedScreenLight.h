#pragma once

#include <functional>
#include <memory>

#include "platform/Cancellation.h"
#include "platform/linux/ScreenLight.h"
#include "platform/linux/SessionLock.h"
#include "platform/Observers.h"

namespace norvane {

// A screen that nobody sees while the session is locked, whatever light it gives: the lock screen is in front
// of everything. While it is, the light itself is not asked for.
class LockedScreenLight final : public ScreenLight {
 public:
    // Both outlive it.
    LockedScreenLight(SessionLock& lock, ScreenLight& light);
    LockedScreenLight(const LockedScreenLight&) = delete;
    LockedScreenLight& operator=(const LockedScreenLight&) = delete;

    bool isLit() override { return !lock_.isLocked() && light_.isLit(); }
    bool isKnownDark() override { return lock_.isLocked() || light_.isKnownDark(); }
    [[nodiscard]] Cancellation onLit(std::function<void()> observer) override;

 private:
    void lockChanged();
    void waitForLight();

    SessionLock& lock_;
    ScreenLight& light_;
    Observers<> lit_;
    std::shared_ptr<int> waiting_ = std::make_shared<int>(0);
    Cancellation lightComes_;  // while somebody waits and nothing is locked
    Cancellation lockChanges_;
};

}  // namespace norvane
