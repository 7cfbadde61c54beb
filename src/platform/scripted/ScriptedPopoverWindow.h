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

    void place(const Rect& anchor) override;
    void orderFront() override;
    void makeKeyWindow() override;
    void orderOut() override;
    Rect frame() const override;
    void setFrame(const Rect& frame) override;
    std::optional<Rect> visibleFrame() const override { return server_.visibleFrame(); }

    SurfaceContent& content() { return content_; }
    PopoverWindowObserver& observer() { return observer_; }
    // What the window would paint now, and what it painted last.
    DisplayList picture();
    const DisplayList& lastPicture() const { return lastPicture_; }
    // How often the content said that it changed since the window was shown.
    int changes() const { return changes_; }
    // How often it was painted since it was shown.
    int pictures() const { return pictures_; }
    // The places that it had while it was on the screen, in order: more than one means that it jumped.
    const std::vector<Point>& placesShown() const { return placesShown_; }

 private:
    bool isShown() const;
    // The room from the anchor to the end of the screen.
    Size most() const;
    void repaintSoon();
    void repaint();

    ScriptedWindowServer& server_;
    SurfaceContent& content_;
    PopoverWindowObserver& observer_;
    Rect anchor_;
    double left_ = 0;
    bool hangsUp_ = false;  // from the anchor's upper edge
    Size size_;
    bool wantsKey_ = false;
    int changes_ = 0;
    int pictures_ = 0;
    DisplayList lastPicture_;
    bool isRepaintDue_ = false;
    Cancellation repaint_;
    std::vector<Point> placesShown_;
};

}  // namespace norvane
