#pragma once

#include "platform/linux/Desk.h"
#include "platform/linux/FrameClock.h"
#include "platform/linux/PopoverFocus.h"
#include "platform/linux/PopoverPlace.h"
#include "platform/linux/PopoverServerWindow.h"
#include "platform/linux/PopoverShape.h"
#include "platform/linux/X11Surface.h"
#include "platform/PopoverWindow.h"
#include "platform/PopoverWindowObserver.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// A window past the window manager that takes the keyboard itself. It sees presses elsewhere without taking
// them away from anybody; only where the server has no such events it holds the pointer while it is shown.
// Under a compositor it is translucent, with round corners and a shadow of its own; else opaque and cut to
// its shape. It goes along when the scale, the colours or the compositor change. On a Wayland compositor's
// screen it is a dialog that the compositor gives the keyboard to, and may put elsewhere.
class X11PopoverWindow final : public PopoverWindow {
 public:
    // Content and observer outlive the window. A call of the observer may end the window.
    X11PopoverWindow(const Desk& desk, SurfaceContent& content, PopoverWindowObserver& observer);
    ~X11PopoverWindow() override;

    void place(const Rect& anchor) override;
    void orderFront() override;
    void makeKeyWindow() override { focus_.want(); }
    void orderOut() override;
    Rect frame() const override { return place_.frame(size_); }
    void setFrame(const Rect& frame) override;
    std::optional<Rect> visibleFrame() const override;

 private:
    enum class Stage { out, placed, shown };
    struct Extent {
        int width = 1;
        int height = 1;

        bool operator==(const Extent&) const = default;
    };

    // What is asked of the content, and what of it there is on the screen, in whole pixels.
    void measure();
    Extent pixelsOf(Size size) const;
    // Makes room in the window for a panel of this size, on its way to the one that was asked for.
    void makeRoomFor(Size panel);
    int margin() const;
    // Of the window and of the panel in it, on the screen.
    PixelRect windowFrame() const;
    PixelRect panelFrame() const;
    PixelRect frameOf(Extent extent) const;
    // Where the panel really is.
    PixelRect panelOnScreen() const;
    PopoverShape shape() const;

    void destroyWindow();
    // Has the server know about the window's place and shape. What it grows by has been painted before.
    void settle();
    // A window manager has put the window somewhere else.
    void moved();
    void adapt();

    bool canBeSeen() const;
    void contentChanged();
    void repaintSoon();
    void repaint();
    void paint();

    void handle(const xcb_generic_event_t& event);
    void pointer(PointerEvent::Kind kind, int rootX, int rootY, Point by = {});
    void pressed(const xcb_button_press_event_t& event);
    void told(const xcb_client_message_event_t& message);
    void keyPressed(const xcb_key_press_event_t& event);
    void holdPointer(int attempts);

    Desk desk_;
    SurfaceContent& content_;
    PopoverWindowObserver& observer_;
    Stage stage_ = Stage::out;
    PopoverPlace place_;
    Size size_;     // what the content would like to have
    Extent panel_;  // what it has at this moment
    Extent room_;   // what the window has room for

    PopoverServerWindow window_{desk_};
    PopoverShape painted_;  // what the pixels were finished to
    X11Surface surface_;
    FrameClock frames_;
    int visibility_ = XCB_VISIBILITY_UNOBSCURED;
    bool isUnmapped_ = false;  // by somebody else
    bool isPointerInside_ = false;
    PopoverFocus focus_{desk_};

    bool isRepaintDue_ = false;
    Cancellation repaint_;
    Cancellation shown_;
    Cancellation accessible_;
    Cancellation keptMemory_;
    Cancellation dropMemory_;
    Cancellation outsidePresses_;
    Cancellation holdPointer_;
    Cancellation appearance_;
    Cancellation screen_;
};

}  // namespace norvane
