#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/scripted/ScriptedMachine.h"
#include "views/HostedView.h"

namespace norvane {

// Text of ten points: a character is 6 points wide, a line 12.5 high.
inline constexpr TextStyle kTen{.font = {.size = 10}};

// One screen in virtual time, as a surface shows it: a test says what its body is, lets time pass and looks.
class ScreenTest : public testing::Test {
 protected:
    virtual Element body() = 0;

    // Shows it for the first time, or again.
    void show() {
        view_.appear();
        paint();
    }
    // The picture of this moment, at the size that it likes or in the given room.
    void paint(std::optional<Size> room = {}) {
        const Size liked = view_.fittingSize(most_);
        picture_ = view_.displayList(room.value_or(liked), machine_.time.monotonic());
    }
    void advance(std::chrono::nanoseconds by) { machine_.advance(by); }
    void paintAfter(std::chrono::nanoseconds by) {
        advance(by);
        paint();
    }
    // Changes what the body looks at, and paints.
    void change(const std::function<void()>& changes) {
        view_.change(changes);
        paint();
    }
    // The same, animated, so that the movement has begun.
    void animate(const Animation& animation, const std::function<void()>& changes) {
        view_.animate(animation, changes);
        paint();
    }

    // A text of the picture, and how opaque it is with all groups around it; 0 where it is not shown.
    struct Shown {
        DrawText text;
        double opacity = 0;
    };
    Shown shown(const std::string& text) const { return find(picture_.items, text, 1).value_or(Shown{}); }
    bool shows(const std::string& text) const { return !shown(text).text.text.empty(); }
    Rect frameOf(const std::string& text) const {
        EXPECT_TRUE(shows(text)) << "no \"" << text << "\" in\n" << printed(picture_);
        return shown(text).text.frame;
    }

    // The node of that name, or of that text, in the tree; none where there is none.
    std::optional<AccessibleNode> accessible(const std::string& name) {
        return find(view_.accessibleTree(), name);
    }
    bool perform(const std::string& name, const std::string& action = "press") {
        const auto node = accessible(name);
        return node && view_.perform(node->key, action);
    }

    void point(PointerEvent::Kind kind, Point at = {}) { view_.pointer({kind, at}); }
    void click(Point at) {
        using Kind = PointerEvent::Kind;
        for (const Kind kind : {Kind::move, Kind::press, Kind::release})
            point(kind, at);
    }
    bool key(KeyEvent::Key key) { return view_.key({key}); }

    ScriptedMachine machine_;
    Size most_{1000, 1000};
    DisplayList picture_;
    int evaluations_ = 0;
    HostedView view_{[this] {
                         ++evaluations_;
                         return body();
                     },
                     machine_.platform()};

 private:
    static std::optional<Shown> find(const std::vector<DisplayItem>& items, const std::string& text,
                                     double opacity) {
        for (const DisplayItem* item : flatItems(items)) {
            const auto* shown = std::get_if<DrawText>(&item->command);
            if (shown != nullptr && shown->text == text) return Shown{*shown, opacity * shown->color.alpha};
            const auto* group = std::get_if<DrawGroup>(&item->command);
            if (group == nullptr) continue;
            if (auto found = find(group->items, text, opacity * group->opacity)) return found;
        }
        return {};
    }
    static std::optional<AccessibleNode> find(const AccessibleNode& node, const std::string& name) {
        if (node.name == name) return node;
        for (const AccessibleNode& child : node.children) {
            if (auto found = find(child, name)) return found;
        }
        return {};
    }
};

}  // namespace norvane
