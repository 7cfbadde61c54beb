#include "gallery/Showing.h"

#include <stdexcept>
#include <string>
#include <utility>

#include "drawing/PanelTones.h"
#include "views/ShapeElement.h"

namespace norvane {
namespace {

// In points.
constexpr double kMargin = 24;
constexpr Size kRoom{4000, 4000};
// Turns of the main queue until what a change sets off has all been done.
constexpr int kTurns = 4;

std::optional<Point> middleIn(const AccessibleNode& node, std::string_view name) {
    if (node.name == name) return Point{node.frame.midX(), node.frame.midY()};
    for (const AccessibleNode& child : node.children) {
        if (const auto found = middleIn(child, name)) return found;
    }
    return std::nullopt;
}

}  // namespace

Showing::Showing(Stage& stage, std::function<Element()> body)
    : stage_(stage),
      view_([body = std::move(body)] { return body().padding(Insets::all(kMargin)); }, stage.platform()) {
    view_.appear();
    settle();
}

Showing& Showing::pass(std::chrono::milliseconds time) {
    stage_.machine.advance(time);
    settle();
    return *this;
}

Showing& Showing::tab(int times) {
    for (int i = 0; i < times; ++i)
        view_.key({KeyEvent::Key::tab});
    settle();
    return *this;
}

Showing& Showing::pointAt(std::string_view name) {
    view_.pointer({PointerEvent::Kind::move, middleOf(name)});
    settle();
    return *this;
}

Showing& Showing::hold(std::string_view name) {
    pointAt(name);
    view_.pointer({PointerEvent::Kind::press, middleOf(name)});
    settle();
    return *this;
}

Showing& Showing::press(std::string_view name) {
    hold(name);
    view_.pointer({PointerEvent::Kind::release, middleOf(name)});
    settle();
    return *this;
}

Showing& Showing::scroll(Point by) {
    const Size size = view_.fittingSize(kRoom);
    view_.pointer({PointerEvent::Kind::scroll, {size.width / 2, size.height / 2}, by});
    settle();
    return *this;
}

DisplayList Showing::picture() {
    return view_.displayList(view_.fittingSize(kRoom), stage_.machine.time.monotonic());
}

void Showing::settle() {
    for (int turn = 0; turn < kTurns; ++turn) {
        picture();
        stage_.machine.settle();
    }
}

Point Showing::middleOf(std::string_view name) {
    if (const auto found = middleIn(view_.accessibleTree(), name)) return *found;
    throw std::runtime_error("nothing is called " + std::string(name));
}

DisplayList pictureOf(Stage& stage, const std::function<Element()>& body, std::chrono::milliseconds after) {
    return Showing(stage, body).pass(after).picture();
}

}  // namespace norvane
