#pragma once

#include <functional>

#include "platform/Cancellation.h"

namespace norvane {

// Whether anybody can see what the screen shows. Main thread only.
class ScreenLight {
 public:
    virtual ~ScreenLight() = default;

    // Asked before each frame of what moves: what it costs to know is spent while frames run.
    virtual bool isLit() = 0;
    // Whether it is dark as far as is known, for what paints once in a while: it may have become so some time
    // ago.
    virtual bool isKnownDark() = 0;
    // Told when the screen, which was dark, can be seen again. Who waits for that has asked before.
    [[nodiscard]] virtual Cancellation onLit(std::function<void()> observer) = 0;
};

}  // namespace norvane
