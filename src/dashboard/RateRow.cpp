#include "dashboard/RateRow.h"

#include <algorithm>
#include <cmath>

#include "dashboard/FigureCell.h"
#include "dashboard/VelocityBar.h"
#include "drawing/NamedFonts.h"
#include "platform/Decimal.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {

std::string formatRate(double rateMBps) {
    const double whole = std::isfinite(rateMBps) ? std::trunc(std::max(rateMBps, 0.0)) : 0;
    return decimal(whole, 0) + " MB/s";
}

Element RateRow::body() const {
    const TextStyle figure{.font = {.size = 12, .weight = FontWeight::medium, .monospacedDigits = true},
                           .alignment = TextAlignment::trailing,
                           .lineLimit = 1};
    Element bar = VelocityBar{.speedMBps = rateMBps, .color = Ink::yellow}.body();
    if (!barId.empty()) bar = std::move(bar).id(barId);
    return hstack({.spacing = 4},                                                      //
                  panelDot(Paint(Ink::yellow).withOpacity(rateMBps > 0 ? 1.0 : 0.4)),  //
                  panelLabel(label),                                                   //
                  spacer(),                                                            //
                  std::move(bar).frame({.width = 60, .height = 4}).padding(Insets::horizontal(8)),
                  text(formatRate(rateMBps), figure).frame({.width = 65, .horizontal = Alignment::end}))
        .accessible({.role = AccessibleRole::text, .name = label, .value = formatRate(rateMBps)});
}

}  // namespace norvane
