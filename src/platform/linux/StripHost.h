#pragma once

#include <functional>

#include "platform/linux/Desk.h"
#include "platform/linux/FrameClock.h"
#include "platform/linux/StatusItemHost.h"
#include "platform/linux/X11Surface.h"

namespace norvane {

// A strip of our own at the top right of the primary monitor, for desktops without a panel that takes items.
// It is a managed dock window that reserves its row; where no window manager keeps docks in front, it comes
// back to the front by itself when another window covers it.
class StripHost final : public StatusItemHost {
 public:
    static constexpr double kHeight = 22;  // points

    StripHost(const Desk& desk, std::function<void()> clicked);
    ~StripHost() override;

    void setLength(double points) override;
    void setContent(SurfaceContent* content) override;
    std::optional<Rect> buttonFrame() const override;

 private:
    PixelRect wantedFrame() const;
    void createWindow();
    void reserveRow();
    void updateSoon();
    void update();
    DisplayList picture(MonotonicInstant at) const;
    void handle(const xcb_generic_event_t& event);
    void followPlace(const xcb_configure_notify_event_t& event);
    void offerAgainLater();
    void comeBackSoon();
    void comeBack();

    Desk desk_;
    std::function<void()> clicked_;
    double length_ = kHeight;
    SurfaceContent* content_ = nullptr;

    xcb_window_t window_ = XCB_NONE;
    bool isOffered_ = false;  // the server was asked to show it
    PixelRect asked_;         // where it was asked for, and
    PixelRect frame_;         // where it is
    bool isReparented_ = false;
    int visibility_ = XCB_VISIBILITY_UNOBSCURED;
    X11Surface surface_;
    FrameClock frames_;

    // Coming back waits longer each time, until it was left alone for a while: two windows that both want to
    // be in front do not flicker.
    MonotonicInstant cameBack_{};
    std::chrono::nanoseconds nextWait_{0};
    bool isComingBack_ = false;

    bool isUpdateDue_ = false;
    Cancellation update_;
    Cancellation comeBack_;
    Cancellation offerAgain_;
    Cancellation events_;
    Cancellation shown_;
    Cancellation appearance_;
    Cancellation screen_;
    Cancellation dropMemory_;
};

}  // namespace norvane
