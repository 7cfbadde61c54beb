#pragma once

#include <functional>

#include "platform/linux/Desk.h"
#include "platform/linux/StatusItemFace.h"
#include "platform/linux/StatusItemHost.h"

namespace norvane {

// A window of ours in a panel's tray, by the System Tray Protocol and the XEmbed Protocol of freedesktop.org.
// The panel says where it is and how large: what was asked for is a wish. Once it has lost its place there
// the host does nothing any more.
class TrayHost final : public StatusItemHost {
 public:
    // What it tells, each from a turn of its own, in which the host may end.
    struct Events {
        std::function<void()> clicked;
        // The width in points that the panel gives, first and whenever it differs.
        std::function<void(double width)> received;
        // There is no place in that tray, or not any more. Once.
        std::function<void()> lost;
    };

    // `tray` takes the requests of items, as its selection tells; it may have gone by now. The request is
    // made in a later turn, with the length that is known then.
    TrayHost(const Desk& desk, xcb_window_t tray, Events events);
    ~TrayHost() override;

    void setLength(double points) override;
    void setContent(SurfaceContent* content) override { face_.setContent(content); }
    std::optional<Rect> buttonFrame() const override;

 private:
    struct Extent {
        int width = 1;
        int height = 1;

        bool operator==(const Extent&) const = default;
    };

    void dock();
    X11Connection::Visual offeredVisual() const;
    void createWindow();
    Extent wanted() const;
    void sayWhatIsWanted();

    void update();
    void tellReceivedSoon();

    void handle(const xcb_generic_event_t& event);
    void reparented(xcb_window_t parent);
    void mapped(bool isMapped);
    void followFrame();
    void followPointer(int x, int y);
    bool isShown() const { return isEmbedded_ && isMapped_; }

    void destroyWindow();
    void giveUp();

    Desk desk_;
    xcb_window_t tray_;
    Events events_;
    double length_;
    StatusItemFace face_;

    xcb_window_t window_ = XCB_NONE;
    X11Connection::Visual visual_;
    Extent asked_;
    PixelRect frame_;  // on the screen
    double received_ = 0;
    bool isEmbedded_ = false;
    bool isMapped_ = false;
    bool isOver_ = false;

    Cancellation trayEvents_;
    Cancellation windowEvents_;
    Cancellation patience_;
    Cancellation told_;
    Cancellation lost_;
    Cancellation shown_;
};

}  // namespace norvane
