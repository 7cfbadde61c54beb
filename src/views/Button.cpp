#include "views/Button.h"

#include <memory>
#include <utility>

#include "drawing/Contrast.h"
#include "views/ButtonNode.h"
#include "views/ShapeElement.h"
#include "views/Text.h"

namespace norvane {
namespace {

// The large size of a control, in points.
constexpr Insets kProminentPadding{.top = 7, .left = 16, .bottom = 7, .right = 16};
constexpr double kProminentRadius = 8;
constexpr TextStyle kProminentText{.font = {.size = 14, .weight = FontWeight::medium},
                                   .alignment = TextAlignment::center};

}  // namespace

Element button(Accessible told, Element label, std::function<void()> action, const ButtonOptions& options) {
    return Element(
        std::make_unique<ButtonNode>(std::move(label), std::move(told), std::move(action), options));
}

Element button(std::string name, Element label, std::function<void()> action, const ButtonOptions& options) {
    return button(Accessible{.role = AccessibleRole::button, .name = std::move(name)}, std::move(label),
                  std::move(action), options);
}

Element prominentButton(std::string label, double minLabelWidth, const Color& tint,
                        std::function<void()> action) {
    const bool isDarkBetter = contrastBetween(tint, Color::black()) >= contrastBetween(tint, Color::white());
    Element shown = text(label, kProminentText, isDarkBetter ? Color::black() : Color::white())
                        .frame({.minWidth = minLabelWidth})
                        .padding(kProminentPadding)
                        .background(shape(Outline::roundedRectangle(kProminentRadius), {.fill = tint}));
    return button(std::move(label), std::move(shown), std::move(action), {.radius = kProminentRadius});
}

}  // namespace norvane
