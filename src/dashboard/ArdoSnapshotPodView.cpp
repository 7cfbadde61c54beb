#include "dashboard/ArdoSnapshotPodView.h"

#include "drawing/NamedFonts.h"
#include "views/Button.h"
#include "views/Proposal.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

struct Pointing {
    bool isHovered = false;
};

constexpr double kRadius = 12;
const Animation kHover = Animation::easeOut(0.16);

// The symbol, and the dot that marks the open pod at its corner.
Element podIcon(const ArdoSnapshotPodView& pod, bool isHovered) {
    const Paint tint = pod.isActive || isHovered ? pod.color : Paint(Ink::secondary);
    return symbol(pod.icon, font::system(12), tint)
        .overlay(shape(Outline::circle(), {.fill = pod.color, .snapping = Snapping::toPixels})
                     .frame({.width = 4, .height = 4})
                     .opacity(pod.isActive ? 1 : 0)
                     .frame({.maxWidth = Proposal::kMost,
                             .maxHeight = Proposal::kMost,
                             .horizontal = Alignment::end,
                             .vertical = Alignment::start})
                     .offset({3, -3}));
}

Element words(const ArdoSnapshotPodView& pod, bool isHovered) {
    const TextStyle titleStyle{.font = font::system(9, FontWeight::bold)};
    const TextStyle valueStyle{.font = {.size = 13, .weight = FontWeight::medium, .monospacedDigits = true},
                               .lineLimit = 1};
    const TextStyle unitStyle{.font = font::system(11), .lineLimit = 1};
    const Paint ink = isHovered ? Ink::primary : Ink::secondary;
    const Paint unitInk = isHovered ? Paint(Ink::primary) : Paint(Ink::secondary).withOpacity(0.7);
    return vstack(
        {.alignment = Alignment::start, .spacing = 2},  //
        text(pod.title, titleStyle, ink),
        // The least width keeps the unit in its place while digits come and go.
        hstack({.spacing = 2},
               text(pod.value.value, valueStyle, ink).frame({.minWidth = 48, .horizontal = Alignment::start}),
               when(!pod.value.unit.empty(), [&] { return text(pod.value.unit, unitStyle, unitInk); }))
            .condensedToFit());
}

Element card(const ArdoSnapshotPodView& pod, bool isHovered) {
    const double hovered = isHovered ? 1 : 0;
    const Paint fill =
        pod.isActive ? pod.color.withOpacity(isHovered ? 0.16 : 0.12) : Paint(Ink::primary).withOpacity(0.03);
    const Paint border =
        pod.isActive ? pod.color.withOpacity(0.65) : Paint(Ink::primary).withOpacity(isHovered ? 0.08 : 0.05);
    const double glow = !pod.isActive ? 0 : isHovered ? 0.7 : 0.5;
    return shape(Outline::roundedRectangle(kRadius),
                 {.fill = fill,
                  .stroke = Stroke{.fill = border, .style = {.width = pod.isActive ? 1.5 : 1.0}},
                  .shadows = {{.paint = Paint(Ink::black).withOpacity(0.12 * hovered),
                               .radius = 12,
                               .offset = {0, 6},
                               .isOutsideOnly = true},
                              {.paint = Paint(Ink::black).withOpacity(0.2 * hovered),
                               .radius = 2,
                               .offset = {0, 1},
                               .isOutsideOnly = true},
                              {.paint = pod.color.withOpacity(glow), .radius = 6, .isOutsideOnly = true}}});
}

}  // namespace

Element ArdoSnapshotPodView::body() const {
    return stateful<Pointing>({}, [pod = *this](const State<Pointing>& pointing) {
        const bool isHovered = pointing->isHovered;
        const std::string spoken =
            pod.value.unit.empty() ? pod.value.value : pod.value.value + " " + pod.value.unit;
        Element content = hstack({.spacing = 6}, podIcon(pod, isHovered), words(pod, isHovered))
                              .padding(Insets::all(10))
                              .frame({.maxWidth = pod.isWide ? std::optional(Proposal::kMost) : std::nullopt,
                                      .horizontal = Alignment::start})
                              .background(card(pod, isHovered))
                              .onHover([pointing](bool isOver) {
                                  pointing.animate(kHover, [isOver](Pointing& p) { p.isHovered = isOver; });
                              });
        return button(Accessible{.role = AccessibleRole::button,
                                 .name = pod.title,
                                 .value = spoken,
                                 .isExpanded = pod.isActive},
                      std::move(content), pod.action, {.radius = kRadius})
            .scaled(isHovered ? 1.025 : 1);
    });
}

}  // namespace norvane
