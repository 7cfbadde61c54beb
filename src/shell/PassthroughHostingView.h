#pragma once

#include "platform/Platform.h"
#include "shell/MenuBarStatsView.h"
#include "views/HostedView.h"

namespace norvane {

// Puts the label on the status item's button without taking the button's clicks: nothing in it is ever the
// target of the pointer, and its background is clear.
class PassthroughHostingView final : public HostedView {
 public:
    PassthroughHostingView(const MenuBarStatsModel& model, const Platform& platform)
        : HostedView([this] { return rootView_.body(); }, platform), rootView_(model) {
        rootView_.observe([this] { invalidate(); });
    }

    DisplayList displayList(Size size, MonotonicInstant at) override {
        const bool wasSquare = rootView_.isSquare();
        rootView_.setWidth(size.width);
        if (rootView_.isSquare() != wasSquare) invalidate();
        return HostedView::displayList(size, at);
    }
    void pointer(const PointerEvent&) override {}
    bool key(const KeyEvent&) override { return false; }

 private:
    MenuBarStatsView rootView_;
};

}  // namespace norvane
