#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "drawing/Damage.h"
#include "platform/scripted/ScriptedMachine.h"
#include "views/Button.h"
#include "views/DepthStack.h"
#include "views/Grid.h"
#include "views/HostedView.h"
#include "views/Image.h"
#include "views/LaidOut.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kHostile[] = {kNaN, kInfinite, -kInfinite, -7, 0, 1e300, -1e300};

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && std::isfinite(rect.size.width) &&
           std::isfinite(rect.size.height) && rect.size.width >= 0 && rect.size.height >= 0;
}

void expectFinite(const AccessibleNode& node, const std::string& where) {
    EXPECT_TRUE(isFinite(node.frame)) << where << ", accessible " << node.name;
    for (const AccessibleNode& child : node.children)
        expectFinite(child, where);
}

void expectFinite(const std::vector<DisplayItem>& items, const std::string& where) {
    for (const DisplayItem* item : flatItems(items)) {
        EXPECT_TRUE(isFinite(item->bounds)) << where << ", item " << printed({{}, {*item}});
        if (const auto* group = std::get_if<DrawGroup>(&item->command)) expectFinite(group->items, where);
    }
}

// Something of everything, in every place where a number can be.
Element painted() {
    return shape(Outline::roundedRectangle(3), {.fill = Ink::red, .stroke = Stroke{Ink::blue}})
        .frame({.width = 20, .height = 20});
}
std::vector<Element> some() {
    std::vector<Element> elements;
    elements.push_back(button("press", text("one two three", kTen), [] {}));
    elements.push_back(painted());
    return elements;
}
struct Place {
    const char* name;
    Element (*with)(double);
};
const Place kPlaces[] = {
    {"row spacing", [](double x) { return hstack({.spacing = x}, some()); }},
    {"spacer", [](double x) { return hstack({}, some(), spacer(x), some()); }},
    {"priority", [](double x) { return hstack({}, some(), text("x", kTen).layoutPriority(x), some()); }},
    {"grid spacing",
     [](double x) { return grid({.columns = 2, .columnSpacing = x, .rowSpacing = x}, some()); }},
    {"grid columns",
     [](double x) {
         return grid({.columns = x > 1e9 ? 1'000'000'000 : x < 0 ? -5 : 0}, some());
     }},
    {"fixed frame",
     [](double x) { return vstack({}, hstack({}, some()).frame({.width = x, .height = x}), some()); }},
    {"least and most",
     [](double x) {
         return vstack({}, hstack({}, some()).frame({.minWidth = x, .minHeight = x}),
                       hstack({}, some()).frame({.maxWidth = x, .maxHeight = x}), some());
     }},
    {"padding", [](double x) { return vstack({}, vstack({}, some()).padding(Insets::all(x)), some()); }},
    {"scroll area",
     [](double x) { return scrollArea(vstack({}, some(), painted().frame({.height = 900})), x); }},
    {"scrolled contents",
     [](double x) { return scrollArea(vstack({}, some(), painted().frame({.height = x}))); }},
    {"opacity", [](double x) { return vstack({}, some()).opacity(x); }},
    {"offset, scale and clip",
     [](double x) {
         return vstack({}, some()).offset({x, x}).scaled(x).clipped(x);
     }},
    {"narrowing", [](double x) { return vstack({}, some()).frame({.minWidth = x}).condensedToFit(); }},
    {"font",
     [](double x) { return vstack({}, text("one two", {.font = {.size = x}, .lineSpacing = x}), some()); }},
    {"symbol", [](double x) { return hstack({}, symbol("pin", {.size = x}), some()); }},
    {"image",
     [](double x) {
         return hstack({}, image("NorvaneLogo", {x, x}), some());
     }},
    {"arc",
     [](double x) {
         return zstack({}, shape(Outline::arc(x, 1 - x), {.stroke = Stroke{Ink::red, {.width = x}}}), some());
     }},
    {"shape",
     [](double x) {
         return zstack({},
                       shape(Outline::roundedRectangle(x),
                             {.fill = Ink::green,
                              .stroke = Stroke{Ink::red, {.width = 2, .dashOn = x, .dashOff = x}},
                              .shadows = {{.paint = Ink::blue, .radius = x, .offset = {x, -x}}},
                              .leadingPart = x}),
                       some());
     }},
    {"button ring", [](double x) { return button("b", text("b", kTen), [] {}, {.radius = x}); }},
};

// Laid out, painted and told in rooms of every kind; from one number to the next, too, as a movement.
TEST(HostileNumbers, AreLaidOutOrLeftOutEverywhere) {
    for (const Place& place : kPlaces) {
        ScriptedMachine machine;
        double number = 10;
        HostedView view([&] { return place.with(number); }, machine.platform());
        view.appear();
        view.fittingSize({500, 500});
        view.displayList({200, 200}, machine.time.monotonic());
        for (const double hostile : kHostile) {
            for (const bool isAnimated : {false, true}) {
                const std::string where = std::string(place.name) + ' ' + testing::PrintToString(hostile);
                const auto change = [&] { number = hostile; };
                if (isAnimated) {
                    view.change([&] { number = 10; });
                    view.displayList({200, 200}, machine.time.monotonic());
                    view.animate(Animation::spring(0.5, 0.6), change);
                } else {
                    view.change(change);
                }
                for (const Size most : {Size{500, 500}, Size{0, 0}, Size{kNaN, kNaN}, Size{-3, -3}}) {
                    const Size size = view.fittingSize(most);
                    EXPECT_TRUE(isFinite({{}, size})) << where;
                    EXPECT_FALSE(size.width > 500 || size.height > 500) << where;
                    DisplayList before = view.displayList(size, machine.time.monotonic());
                    machine.advance(std::chrono::milliseconds(100));
                    view.key({KeyEvent::Key::tab});
                    view.pointer({PointerEvent::Kind::scroll, {5, 5}, {hostile, hostile}});
                    view.pointer({PointerEvent::Kind::move, {hostile, 5}});
                    const DisplayList list = view.displayList(size, machine.time.monotonic());
                    expectFinite(list.items, where);
                    expectFinite(view.accessibleTree(), where);
                    damageBetween(before, list);
                    EXPECT_TRUE(isFinite({{}, list.size})) << where;
                }
            }
            if (testing::Test::HasFailure()) break;
        }
    }
}

}  // namespace
}  // namespace norvane
