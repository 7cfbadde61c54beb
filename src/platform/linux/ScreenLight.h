#pragma once

#include <functional>

#include "platform/Cancellation.h"

namespace norvane {

// Whether anybody can see what the screen shows. Main thread only.
class ScreenLight {
 public:
    virtual ~ScreenLight() = default;

    // Asked before each frame, and by nobody else: what it costs to know is spent while frames run.
    virtual bool isLit() = 0;
    // Told when the screen, which was dark, can be seen again. Who waits for that has asked `isLit` before.
    [[nodiscard]] virtual Cancellation onLit(std::function<void()> observer) = 0;
};

}  // namespace norvane
