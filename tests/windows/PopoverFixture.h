#pragma once

#include <algorithm>
#include <memory>

#include "DesktopTest.h"
#include "platform/PopoverWindowObserver.h"

namespace norvane {

// Counts what a popover's window tells, and does then what it was told to do.
class RecordingObserver final : public PopoverWindowObserver {
 public:
    int pressesOutside = 0;
    int focusLosses = 0;
    int escapes = 0;
    std::function<void()> then;

    void windowPressedOutside() override { tell(pressesOutside); }
    void windowLostFocus() override { tell(focusLosses); }
    void windowEscapePressed() override { tell(escapes); }

 private:
    void tell(int& count) {
        ++count;
        if (const auto next = then) next();
    }
};

// The anchor below which a popover hangs that has its upper edge's middle there.
constexpr Rect anchorAbove(double middle, double top) {
    return {{middle - 27, top - PopoverWindow::kGap - 22}, {54, 22}};
}

// A popover with two green squares, and all that is told of it.
class PopoverFixture : public DesktopTest {
 protected:
    static constexpr PixelRect kPopover{300, 100, 200, 120};

    PopoverFixture() {
        content_.swatches = {{{{20, 20}, {40, 40}}, kGreen}, {{{100, 20}, {40, 40}}, kGreen}};
    }
    void begin() override { make(); }

    void make() { popover_ = windowServer_->makePopoverWindow(content_, observer_); }
    void makeOn(const X11Connection::Uses& uses) {
        popover_.reset();
        connect(uses);
        make();
    }
    void show(const Rect& anchor = anchorAbove(400, 100)) {
        popover_->place(anchor);
        popover_->orderFront();
        waitForTheServer();
    }
    // With the keyboard, where its place is said to be.
    void open() {
        show();
        popover_->makeKeyWindow();
        ASSERT_TRUE(comesToShow(340, 140, kGreenPixel));
        ASSERT_TRUE(comes([&] { return bystander_->focused() == window(); }));
    }
    // In a window manager's frame or not.
    xcb_window_t window() const {
        for (const xcb_window_t top : bystander_->windows()) {
            auto all = bystander_->childrenOf(top);
            all.push_back(top);
            for (const xcb_window_t each : all) {
                if (bystander_->text(each, "_NET_WM_NAME") == "Norvane") return each;
            }
        }
        return XCB_NONE;
    }
    // As one that does nothing but owning a selection.
    xcb_window_t startCompositor() {
        const xcb_window_t owner = bystander_->open({0, 0, 1, 1});
        bystander_->own("_NET_WM_CM_S0", owner);
        return owner;
    }
    std::ptrdiff_t told(const PointerEvent& event) const {
        return std::count(content_.pointerEvents.begin(), content_.pointerEvents.end(), event);
    }
    bool comesToTell(const PointerEvent& event) const {
        return comes([&] { return told(event) == 1; });
    }

    SwatchContent content_;
    RecordingObserver observer_;
    std::unique_ptr<PopoverWindow> popover_;
};

}  // namespace norvane
