#include "gallery/ElementExhibits.h"

#include <cmath>
#include <memory>
#include <numbers>
#include <string>

#include "gallery/Captions.h"
#include "gallery/Showing.h"
#include "views/DepthStack.h"
#include "views/Divider.h"
#include "views/Grid.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane::gallery {
namespace {

using namespace std::chrono_literals;

constexpr TextStyle kPlain{.font = {.size = 13}};

// A block of that size, to be laid out with others.
Element block(double width, double height, Ink ink) {
    return shape(Outline::roundedRectangle(4), {.fill = ink}).frame({.width = width, .height = height});
}

Element centered(Element thing) {
    return std::move(thing).frame({.maxWidth = Proposal::kMost, .maxHeight = Proposal::kMost});
}

Element boxed(Element thing) {
    const FillStyle faint(Paint(Ink::primary).withOpacity(0.3));
    return std::move(thing).background(
        shape(Outline::rectangle(), {.stroke = Stroke{.fill = faint, .style = {.dashOn = 3, .dashOff = 3}},
                                     .snapping = Snapping::toPixels}));
}

Element three(Axis axis, Alignment alignment) {
    return boxed(stack(axis, {.alignment = alignment, .spacing = 6},
                       listOf(block(20, 20, Ink::red), block(34, 34, Ink::green), block(14, 14, Ink::blue))));
}

// Of five points, within a square of that side.
std::shared_ptr<const Path> star(double side) {
    Path path;
    for (int i = 0; i < 10; ++i) {
        const double radius = i % 2 == 0 ? side / 2 : side / 5;
        const double angle = (i / 10.0 - 0.25) * 2 * std::numbers::pi;
        const Point at{side / 2 + radius * std::cos(angle), side / 2 + radius * std::sin(angle)};
        if (i == 0) {
            path.segments.push_back(Path::MoveTo{at});
        } else {
            path.segments.push_back(Path::LineTo{at});
        }
    }
    path.segments.push_back(Path::Close{});
    return std::make_shared<const Path>(std::move(path));
}

Element sample(const std::string& name, const Outline& outline, const ShapeStyle& style) {
    return captioned(name, shape(outline, style).frame({.width = 72, .height = 44}));
}

}  // namespace

DisplayList stacks(Stage& stage) {
    return pictureOf(stage, [] {
        Element filled =
            hstack({}, text("start", kPlain), spacer(), text("middle", kPlain), spacer(), text("end", kPlain))
                .frame({.width = 300});
        std::vector<Element> cells;
        for (int i = 0; i < 8; ++i)
            cells.push_back(block(20 + 6 * i, 16, i % 2 == 0 ? Ink::teal : Ink::purple));
        return column(these(
            row(these(captioned("row, start", three(Axis::horizontal, Alignment::start)),
                      captioned("row, center", three(Axis::horizontal, Alignment::center)),
                      captioned("row, end", three(Axis::horizontal, Alignment::end)))),
            row(these(
                captioned("column, start", three(Axis::vertical, Alignment::start)),
                captioned("column, center", three(Axis::vertical, Alignment::center)),
                captioned("column, end", three(Axis::vertical, Alignment::end)),
                captioned("depth", boxed(zstack({}, block(60, 60, Ink::blue), block(40, 40, Ink::yellow),
                                                block(20, 20, Ink::red)))))),
            captioned("spacers", boxed(std::move(filled))), divider(),
            captioned("grid of three columns",
                      boxed(grid({.columns = 3, .columnSpacing = 8, .rowSpacing = 6}, std::move(cells))
                                .frame({.width = 300})))));
    });
}

DisplayList modifiers(Stage& stage) {
    return pictureOf(stage, [] {
        const auto thing = [] { return block(48, 30, Ink::orange); };
        const auto overlapping = [] {
            return zstack({}, block(48, 30, Ink::orange), block(24, 44, Ink::blue));
        };
        return table(
            4,
            these(captioned("padding", boxed(thing().padding(Insets::all(8)))),
                  captioned("frame, end", boxed(thing().frame({.width = 80,
                                                               .height = 50,
                                                               .horizontal = Alignment::end,
                                                               .vertical = Alignment::end}))),
                  captioned("background",
                            thing()
                                .padding(Insets::all(6))
                                .background(shape(Outline::roundedRectangle(10), {.fill = Ink::teal}))),
                  captioned("overlay", thing().overlay(centered(text("over", kPlain, Ink::white)))),
                  captioned("opacity 0.4", overlapping().opacity(0.4)),
                  captioned("offset", boxed(thing().offset({8, 6}))),
                  captioned("scaled 1.3", boxed(thing().scaled(1.3))),
                  captioned("clipped 12", overlapping().frame({.width = 44, .height = 34}).clipped(12)),
                  captioned(
                      "condensed",
                      boxed(text("A long line, narrowed", kPlain).condensedToFit().frame({.width = 90})))));
    });
}

DisplayList shapes(Stage& stage) {
    return pictureOf(stage, [] {
        const FillStyle across(Ink::purple, Ink::teal, GradientDirection::leadingToTrailing);
        const FillStyle down(Ink::yellow, Ink::red, GradientDirection::topToBottom);
        const auto line = [](Ink ink, const StrokeStyle& style = {.width = 2}) {
            return ShapeStyle{.stroke = Stroke{.fill = ink, .style = style}};
        };
        Outline five{.kind = Outline::Kind::path, .path = star(44)};
        return table(
            4, these(sample("rectangle", Outline::rectangle(), {.fill = Ink::blue}),
                     sample("rounded 12", Outline::roundedRectangle(12), {.fill = Ink::blue}),
                     sample("capsule", Outline::capsule(), {.fill = Ink::blue}),
                     sample("circle", Outline::circle(), {.fill = Ink::blue}),
                     sample("across", Outline::roundedRectangle(12), {.fill = across}),
                     sample("down", Outline::roundedRectangle(12), {.fill = down}),
                     sample("leading 60 %", Outline::capsule(), {.fill = across, .leadingPart = 0.6}),
                     sample("path", five, {.fill = Ink::orange}),
                     sample("line", Outline::roundedRectangle(12), line(Ink::green)),
                     sample("dashed", Outline::roundedRectangle(12),
                            line(Ink::green, {.width = 2, .dashOn = 6, .dashOff = 4})),
                     sample("hairline on pixels", Outline::roundedRectangle(12),
                            {.stroke = Stroke{.fill = Ink::primary, .style = {.width = 1}},
                             .snapping = Snapping::toPixels}),
                     sample("path's line", five, line(Ink::orange, {.width = 2, .join = LineJoin::round})),
                     sample("arc to 0.25", Outline::arc(0, 0.25), line(Ink::red, {.width = 5})),
                     sample("arc, round ends", Outline::arc(0.1, 0.8),
                            line(Ink::red, {.width = 5, .cap = LineCap::round})),
                     sample("arc to 1.4", Outline::arc(0, 1.4), line(Ink::red, {.width = 5})),
                     sample("arc to 0", Outline::arc(0, 0),
                            line(Ink::red, {.width = 5, .cap = LineCap::round}))));
    });
}

DisplayList shadows(Stage& stage) {
    return pictureOf(stage, [] {
        const auto glowing = [](double radius, double opacity) {
            return ShapeStyle{
                .fill = Ink::green,
                .shadows = {{.paint = Paint(Ink::green).withOpacity(opacity), .radius = radius}}};
        };
        const Shadow below{.paint = Paint(Ink::black).withOpacity(0.4), .radius = 8, .offset = {0, 4}};
        Shadow outside = below;
        outside.isOutsideOnly = true;
        const FillStyle faint(Paint(Ink::primary).withOpacity(0.06));
        const StrokeStyle wide{.width = 5, .cap = LineCap::round};
        return table(
            4, these(sample("glow 2", Outline::capsule(), glowing(2, 0.2)),
                     sample("glow 4", Outline::capsule(), glowing(4, 0.5)),
                     sample("glow 6", Outline::capsule(), glowing(6, 0.8)),
                     sample("glow 16", Outline::roundedRectangle(12), glowing(16, 0.8)),
                     sample("shadow", Outline::roundedRectangle(12), {.fill = Ink::blue, .shadows = {below}}),
                     sample("through", Outline::roundedRectangle(12), {.fill = faint, .shadows = {below}}),
                     sample("outside only", Outline::roundedRectangle(12),
                            {.fill = faint, .shadows = {outside}}),
                     sample("of a line", Outline::arc(0, 0.7),
                            {.stroke = Stroke{.fill = Ink::red, .style = wide},
                             .shadows = {{.paint = Paint(Ink::red).withOpacity(0.8), .radius = 7}}})));
    });
}

DisplayList scrolled(Stage& stage) {
    const auto body = [] {
        std::vector<Element> lines;
        for (int i = 1; i <= 30; ++i)
            lines.push_back(text("Line " + std::to_string(i) + " of thirty", kPlain));
        return scrollArea(vstack({.alignment = Alignment::start, .spacing = 4}, std::move(lines))
                              .padding(Insets::horizontal(10))
                              .frame({.width = 220, .horizontal = Alignment::start}))
            .frame({.width = 220, .height = 160})
            .background(shape(Outline::roundedRectangle(8), {.fill = Paint(Ink::primary).withOpacity(0.04)}));
    };
    return Showing(stage, body).scroll({0, 130}).pass(1s).picture();
}

DisplayList transitionsHalfWay(Stage& stage) {
    struct Case {
        const char* name;
        Transition transition;
    };
    static const Case kCases[] = {{"opacity", Transition::opacity()},
                                  {"from the top", Transition::move(Edge::top)},
                                  {"from trailing", Transition::move(Edge::trailing)},
                                  {"top, with opacity", Transition::move(Edge::top).withOpacity()}};
    bool isSwitched = false;
    // A place of its own, in which it is seen where it has got to.
    const auto cell = [&](const Case& one, bool isThere) {
        Element thing = when(isThere, [&] { return block(60, 30, Ink::teal).transition(one.transition); });
        return boxed(zstack({}, block(60, 30, Ink::clear), std::move(thing)));
    };
    Showing showing(stage, [&] {
        return table(4, forEach(kCases, [&](const Case& one) {
                         return captioned(one.name, vstack({.spacing = 40}, cell(one, isSwitched),
                                                           cell(one, !isSwitched)));
                     }));
    });
    showing.view().animate(Animation::linear(1), [&] { isSwitched = true; });
    showing.picture();
    return showing.pass(500ms).picture();
}

}  // namespace norvane::gallery
