#pragma once

#include <functional>
#include <optional>

#include "drawing/Color.h"
#include "platform/Cancellation.h"

namespace norvane {

// How the desktop looks. Main thread only; answers come from memory.
class Appearance {
 public:
    virtual ~Appearance() = default;

    // `effectiveAppearance` is the dark one. False while nothing is known.
    virtual bool isDark() const = 0;
    // The colour that the user has chosen for what stands out, opaque. None where nobody chose one, or
    // nothing is known of it.
    virtual std::optional<Color> accentColor() const = 0;
    // The user wants things to be in their place at once rather than to move there. False while nothing is
    // known.
    virtual bool reducesMotion() const = 0;
    // Told of every change of what is above.
    [[nodiscard]] virtual Cancellation onDidChange(std::function<void()> observer) = 0;
};

}  // namespace norvane
