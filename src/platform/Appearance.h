#pragma once

#include <functional>

#include "platform/Cancellation.h"

namespace norvane {

// How the desktop looks. Main thread only; answers come from memory.
class Appearance {
 public:
    virtual ~Appearance() = default;

    // `effectiveAppearance` is the dark one. False while nothing is known.
    virtual bool isDark() const = 0;
    [[nodiscard]] virtual Cancellation onDidChange(std::function<void()> observer) = 0;
};

}  // namespace norvane
