#pragma once

#include "platform/scripted/ScriptedWindowServer.h"

namespace norvane {

// A window of the scripted desktop, with all that a test wants to see of it.
class ScriptedPopoverWindow final : public PopoverWindow {
 public:
    ScriptedPopoverWindow(ScriptedWindowServer& server, SurfaceContent& content,
                          PopoverWindowObserver& observer)
        : server_(server), content_(content), observer_(observer) {}
    ~ScriptedPopoverWindow() override { orderOut(); }

    void place(Point topLeft) override;
    void orderFront() override;
    void makeKeyWindow() override;
    void orderOut() override;
    Rect frame() const override { return {origin_, content_.fittingSize()}; }
    void setFrame(const Rect& frame) override;
    std::optional<Rect> visibleFrame() const override { return server_.visibleFrame(); }

    SurfaceContent& content() { return content_; }
    PopoverWindowObserver& observer() { return observer_; }
    // What the window would paint now.
    DisplayList picture();
    // How often the content said that it changed since the window was shown.
    int changes() const { return changes_; }
    // The places that it had while it was on the screen, in order: more than one means that it jumped.
    const std::vector<Point>& placesShown() const { return placesShown_; }

 private:
    bool isShown() const;

    ScriptedWindowServer& server_;
    SurfaceContent& content_;
    PopoverWindowObserver& observer_;
    Point origin_;
    bool wantsKey_ = false;
    int changes_ = 0;
    std::vector<Point> placesShown_;
};

}  // namespace norvane
