#include "views/Link.h"

#include <utility>

#include "views/Button.h"
#include "views/ShapeElement.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

struct Pointed {
    bool isOver = false;
};

constexpr double kFocusRadius = 3;

Element underlined(Element label, const TextStyle& style, const Paint& paint) {
    // Just below the letters' feet, which stand a fifth of a size above the lower edge of their line.
    const double above = style.font.size * 0.1;
    return std::move(label).overlay(
        shape(Outline::rectangle(), {.fill = paint, .snapping = Snapping::toPixels})
            .frame({.height = 1})
            .padding({.bottom = above})
            .frame({.maxHeight = Proposal::kMost, .vertical = Alignment::end}));
}

}  // namespace

Element link(std::string text, const TextStyle& style, std::function<void()> action, const Paint& paint) {
    return stateful<Pointed>({}, [text = std::move(text), style, action = std::move(action),
                                  paint](const State<Pointed>& pointed) {
        Element label = norvane::text(text, style, paint);
        if (pointed->isOver) label = underlined(std::move(label), style, paint);
        return button(Accessible{.role = AccessibleRole::link, .name = text}, std::move(label), action,
                      {.radius = kFocusRadius})
            .onHover([pointed](bool isOver) {
                pointed.change([isOver](Pointed& state) { state.isOver = isOver; });
            });
    });
}

}  // namespace norvane
