#pragma once

#include <functional>

#include "platform/linux/Desk.h"
#include "platform/linux/StatusItemFace.h"
#include "platform/linux/StatusItemHost.h"

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
    void setContent(SurfaceContent* content) override { face_.setContent(content); }
    std::optional<Rect> buttonFrame() const override;

 private:
    PixelRect wantedFrame() const;
    void createWindow();
    void reserveRow();
    void update();
    std::vector<DisplayItem> ground() const;
    void handle(const xcb_generic_event_t& event);
    void followPlace(const xcb_generic_event_t& event);
    void offerAgainLater();
    void comeBackSoon();
    void comeBack();

    Desk desk_;
    double length_ = kHeight;

    xcb_window_t window_ = XCB_NONE;
    bool isOffered_ = false;  // the server was asked to show it
    PixelRect asked_;         // where it was asked for, and
    PixelRect frame_;         // where it is
    bool isReparented_ = false;
    StatusItemFace face_;

    // Coming back waits longer each time, until it was left alone for a while: two windows that both want to
    // be in front do not flicker.
    MonotonicInstant cameBack_{};
    std::chrono::nanoseconds nextWait_{0};
    bool isComingBack_ = false;

    Cancellation comeBack_;
    Cancellation offerAgain_;
    Cancellation events_;
    Cancellation shown_;
};

}  // namespace norvane
