#include "dashboard/KeyedBar.h"

#include "dashboard/FigureCell.h"
#include "dashboard/GaugeMotion.h"
#include "drawing/NamedFonts.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr double kBarHeight = 10;
// Between the lines, in points.
constexpr double kKeySpacing = 6;

Element key(const Paint& paint, const std::string& label) {
    return hstack({.spacing = 4}, panelDot(paint),
                  text(label, {.font = font::system(10, FontWeight::medium), .lineLimit = 1}));
}

}  // namespace

Element KeyedBar::body() const {
    return vstack(
        {.alignment = Alignment::start, .spacing = kKeySpacing},
        vstack({.spacing = kKeySpacing},
               hstack({.spacing = 4},     //
                      panelLabel(label),  //
                      spacer(),           //
                      text(value, {.font = valueFont, .lineLimit = 1}).layoutPriority(1)),
               bar.body().frame({.height = kBarHeight}))
            .accessible({.role = AccessibleRole::meter,
                         .name = label,
                         .value = value,
                         .number = gaugeNumber(ArdoNeonBar::ratio(bar.value, bar.total))}),
        hstack({.spacing = 12}, key(bar.color, filled), key(Paint(Ink::primary).withOpacity(0.1), rest))
            .padding({.top = 2}));
}

}  // namespace norvane
