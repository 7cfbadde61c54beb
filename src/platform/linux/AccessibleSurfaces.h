#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "platform/Cancellation.h"
#include "platform/linux/AccessibleSurface.h"
#include "platform/Observers.h"

namespace norvane {

// The surfaces of ours that are on the screen, for whoever tells of them. While nobody does, all of this is a
// few small entries. Main thread only.
class AccessibleSurfaces {
 public:
    // It is on the screen until the returned value goes away.
    [[nodiscard]] Cancellation add(AccessibleSurface surface);
    // What one of them shows, its place or its keyboard may differ from before.
    void changed() { observers_.tell(); }

    // By numbers that are never used again. A copy holds what it needs.
    std::map<std::uint64_t, AccessibleSurface> all() const { return *surfaces_; }
    // Told of every change, also of those that come and go.
    [[nodiscard]] Cancellation onChange(std::function<void()> observer) {
        return observers_.add(std::move(observer));
    }

 private:
    using Surfaces = std::map<std::uint64_t, AccessibleSurface>;

    std::shared_ptr<Surfaces> surfaces_ = std::make_shared<Surfaces>();
    std::uint64_t lastNumber_ = 0;
    Observers<> observers_;
};

}  // namespace norvane
