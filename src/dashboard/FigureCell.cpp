#include "dashboard/FigureCell.h"

#include <utility>

#include "drawing/NamedFonts.h"
#include "views/Proposal.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {

Element panelDot(const Paint& paint, const Paint& glow) {
    return shape(Outline::circle(),
                 {.fill = paint, .shadows = {{.paint = glow, .radius = 2}}, .snapping = Snapping::toPixels})
        .frame({.width = 4.5, .height = 4.5});
}

Element FigureCell::body() const {
    return hstack({.spacing = 4},  //
                  panelDot(dot, glow),
                  panelLabel(label),  //
                  spacer(),           //
                  when(!value.empty(),
                       [this] { return text(value, {.font = font, .lineLimit = 1}, valuePaint); }))
        .accessible({.role = AccessibleRole::text, .name = label, .value = value});
}

Element panelLabel(std::string words) {
    return text(std::move(words), {.font = font::system(12, FontWeight::medium), .lineLimit = 1});
}

Element figureRow(const FigureCell& first, const FigureCell& second) {
    const auto half = [](const FigureCell& cell) {
        return cell.body().frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start});
    };
    return hstack({.spacing = kFigureGap}, half(first), half(second));
}

}  // namespace norvane
