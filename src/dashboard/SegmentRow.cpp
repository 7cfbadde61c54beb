#include "dashboard/SegmentRow.h"

#include <utility>

#include "dashboard/ArdoControlMotion.h"
#include "views/Button.h"
#include "views/DepthStack.h"
#include "views/ShapeElement.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

// In points.
constexpr double kRowHeight = 22;
constexpr double kPadding = 2;

// The row keeps nothing; this is what it moves by.
struct Moving {};

Element pill(const SegmentRow& row) {
    return shape(Outline::capsule(), {.fill = row.activeTint})
        .frame({.width = row.itemWidth, .height = kRowHeight})
        .offset({static_cast<double>(*row.chosen) * row.itemWidth, 0})
        .id("ArdoPill");
}

Element segment(const SegmentRow& row, std::size_t index, const State<Moving>& moving) {
    const TextStyle style{.font = {.size = 11, .weight = FontWeight::medium}};
    const bool isChosen = row.chosen == index;
    const Paint paint = isChosen ? Paint(Ink::black) : Paint(Ink::primary).withOpacity(0.6);
    const auto press = [moving, choose = row.choose, index, isChosen] {
        if (isChosen || !choose) return;
        moving.animate(ardoControlMotion(), [&](Moving&) { choose(index); });
    };
    return button(
        Accessible{.role = AccessibleRole::radioButton, .name = row.labels[index], .isOn = isChosen},
        text(row.labels[index], style, paint).frame({.width = row.itemWidth, .height = kRowHeight}), press,
        {.radius = kRowHeight / 2, .dimsWhileHeld = !isChosen});
}

}  // namespace

Element SegmentRow::body() const {
    return stateful<Moving>({}, [row = *this](const State<Moving>& moving) {
        std::vector<Element> segments;
        for (std::size_t index = 0; index < row.labels.size(); ++index)
            segments.push_back(segment(row, index, moving));
        return zstack({.horizontal = Alignment::start},  //
                      when(row.chosen.has_value(), [&] { return pill(row); }),
                      hstack({}, std::move(segments)))
            .padding(Insets::all(kPadding))
            .background(shape(Outline::capsule(), {.fill = Paint(Ink::primary).withOpacity(0.1)}))
            .accessible({.role = AccessibleRole::group, .name = row.name, .containsMore = true});
    });
}

}  // namespace norvane
