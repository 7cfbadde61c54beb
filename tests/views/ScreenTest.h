#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "platform/scripted/ScriptedMachine.h"
#include "views/Animation.h"
#include "views/HostedView.h"
#include "views/LaidOut.h"

namespace norvane {

// One screen in virtual time, as a surface shows it: a test says what its body is, lets time pass and looks.
class ScreenTest : public testing::Test {
 protected:
    virtual Element body() = 0;

    // Shows it for the first time, or again.
    void show() {
        view_.appear();
        paint();
    }
    // The picture of this moment, at the size that it likes or in the given one.
    const DisplayList& paint();
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

    // The item of this picture that the text, symbol or filled colour is; none where it is not in it. It is
    // looked for in groups as well.
    const DisplayItem* textItem(const std::string& text) const;
    // The frame of that text; a failure where there is none.
    Rect frameOf(const std::string& text) const;
    bool shows(const std::string& text) const { return textItem(text) != nullptr; }
    // How opaque that text is with all groups around it; 0 where it is not shown.
    double opacityOf(const std::string& text) const;

    // The node of that name, or of that text, in the tree; none where there is none.
    std::optional<AccessibleNode> accessible(const std::string& name);
    bool perform(const std::string& name, const std::string& action = "press");

    void point(PointerEvent::Kind kind, Point at = {}) { view_.pointer({kind, at}); }
    void click(Point at) {
        point(PointerEvent::Kind::move, at);
        point(PointerEvent::Kind::press, at);
        point(PointerEvent::Kind::release, at);
    }
    void clickOn(const std::string& text);
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
};

}  // namespace norvane
