#include "dashboard/BatteryDetailListView.h"

#include <algorithm>
#include <string>

#include "dashboard/BatteryLook.h"
#include "dashboard/FigureCell.h"
#include "dashboard/KeyedBar.h"
#include "drawing/NamedFonts.h"
#include "views/Divider.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

// Here the dot is beside the value.
Element row(const std::string& label, const std::string& value, const Paint& dot) {
    const TextStyle figure{.font = {.size = 11, .weight = FontWeight::medium, .monospacedDigits = true},
                           .lineLimit = 1};
    return hstack({.spacing = 4}, panelLabel(label), spacer(), panelDot(dot), text(value, figure))
        .accessible({.role = AccessibleRole::text, .name = label, .value = value});
}

}  // namespace

Element BatteryDetailListView::body() const {
    const SystemSnapshot* const now = snapshot.get();
    const std::int64_t cycles = now != nullptr ? now->batteryCycleCount.value_or(0) : 0;
    const std::int64_t max = now != nullptr ? now->batteryMaxCapacitymAh.value_or(0) : 0;
    const std::int64_t design =
        std::max<std::int64_t>(now != nullptr ? now->batteryDesignCapacitymAh.value_or(1) : 1, 1);
    const bool isKnown = max >= 1;
    const KeyedBar health{
        .label = "Battery Health",
        .value = formatBatteryHealth(now),
        .valueFont = {.size = 11,
                      .weight = FontWeight::medium,
                      .design = FontDesign::monospaced,
                      .monospacedDigits = true},
        .bar = {.value = isKnown ? static_cast<double>(max) : 0,
                .total = isKnown ? static_cast<double>(design) : 1,
                .color = batteryHealthColor(now)},
        .filled = now != nullptr ? now->batteryHealthCondition.value_or("Normal") : "Normal",
        .rest = "Degradation"};
    return vstack({.alignment = Alignment::start, .spacing = 10},  //
                  health.body(),                                   //
                  divider().opacity(0.3),                          //
                  row("Charge Cycles", std::to_string(cycles), Ink::blue),
                  row("Max Capacity", std::to_string(max) + " mAh", Ink::orange),
                  row("Design Capacity", std::to_string(design) + " mAh", FigureCell::mutedDot()))
        .padding({.bottom = 4});
}

}  // namespace norvane
