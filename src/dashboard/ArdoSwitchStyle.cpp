#include "dashboard/ArdoSwitchStyle.h"

#include <utility>

#include "dashboard/ArdoControlMotion.h"
#include "views/Button.h"
#include "views/DepthStack.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

// In points.
constexpr double kWidth = 34;
constexpr double kSwitchHeight = 20;
constexpr double kThumb = 14;
constexpr double kTravel = 7;
constexpr double kGlowRadius = 4;
constexpr double kRowPadding = 2;
constexpr double kRowRadius = 6;
// Between the label and the switch at least.
constexpr double kLeastGap = 12;

// The switch keeps nothing; this is what it moves by.
struct Flipping {};

Element switchOf(const Paint& tint, bool isOn) {
    const Paint primary = Ink::primary;
    Element capsule =
        shape(Outline::capsule(),
              {.fill = isOn ? tint.withOpacity(0.2) : primary.withOpacity(0.06),
               .stroke = Stroke{.fill = isOn ? tint.withOpacity(0.5) : primary.withOpacity(0.1)},
               .snapping = Snapping::toPixels});
    Element thumb =
        shape(
            Outline::circle(),
            {.fill = isOn ? tint : primary.withOpacity(0.2),
             .shadows = {{.paint = isOn ? tint.withOpacity(0.4) : Paint(Ink::clear), .radius = kGlowRadius}}})
            .frame({.width = kThumb, .height = kThumb})
            .offset({isOn ? kTravel : -kTravel, 0});
    return zstack({}, std::move(capsule), std::move(thumb)).frame({.width = kWidth, .height = kSwitchHeight});
}

}  // namespace

Element ArdoSwitchStyle::body(const std::string& label, bool isOn, std::function<void(bool)> flipped,
                              bool isEnabled) const {
    const TextStyle style{.font = {.size = 13}};
    return stateful<Flipping>({}, [tint = tint, label, isOn, flipped = std::move(flipped), isEnabled,
                                   style](const State<Flipping>& moving) {
        Element row =
            hstack({}, text(label, style).layoutPriority(1), spacer(kLeastGap), switchOf(tint, isOn))
                .padding(Insets::vertical(kRowPadding));
        const auto flip = [moving, flipped, isOn] {
            moving.animate(ardoControlMotion(), [&](Flipping&) {
                if (flipped) flipped(!isOn);
            });
        };
        return button(Accessible{.role = AccessibleRole::toggle, .name = label, .isOn = isOn}, std::move(row),
                      flip, {.radius = kRowRadius, .isEnabled = isEnabled, .dimsWhileHeld = false});
    });
}

}  // namespace norvane
