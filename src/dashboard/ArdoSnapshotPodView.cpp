#include "dashboard/ArdoSnapshotPodView.h"

#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {

Element ArdoSnapshotPodView::body() const {
    const TextStyle titleStyle{.font = {.size = 9, .weight = FontWeight::bold}};
    const TextStyle valueStyle{.font = {.size = 13, .weight = FontWeight::medium, .monospacedDigits = true}};
    const TextStyle unitStyle{.font = {.size = 11}};

    // The least width keeps the unit in its place while digits come and go.
    Element number =
        text(value.value, valueStyle, Ink::secondary).frame({.minWidth = 48, .horizontal = Alignment::start});
    Element row = hstack({.spacing = 4}, std::move(number),
                         text(value.unit, unitStyle, Paint(Ink::secondary).withOpacity(0.7)));
    return vstack({.alignment = Alignment::start, .spacing = 2}, text(title, titleStyle, Ink::secondary),
                  std::move(row))
        .padding(Insets::all(10))
        .frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start})
        .background({.radius = 12,
                     .fill = Paint(Ink::primary).withOpacity(0.03),
                     .border = Paint(Ink::primary).withOpacity(0.05),
                     .borderWidth = 1})
        .accessible(AccessibleRole::group, title, value.value + " " + value.unit);
}

}  // namespace norvane
