#pragma once

#include <algorithm>
#include <memory>

#include "DesktopTest.h"
#include "RecordingObserver.h"

namespace norvane {

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
        ASSERT_TRUE(comes([&] { return shows(340, 140, kGreenPixel); }));
        ASSERT_TRUE(comes([&] { return bystander_->focused() == window(); }));
    }
    virtual xcb_window_t window() const { return bystander_->windowAt(kPopover).value_or(XCB_NONE); }
    bool comesToBeAt(const PixelRect& frame) const {
        return comes([&] { return bystander_->windowAt(frame).has_value(); });
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
