#pragma once

#include "platform/linux/Desk.h"
#include "platform/linux/X11Surface.h"
#include "platform/PopoverWindow.h"
#include "platform/PopoverWindowObserver.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// A window past the window manager that takes the keyboard itself. It sees presses elsewhere without taking
// them away from anybody; only where the server has no such events it holds the pointer while it is shown.
// Under a compositor it is translucent, with round corners and a shadow of its own; else opaque and cut to
// its shape. It goes along when the scale, the colours or the compositor change.
class X11PopoverWindow final : public PopoverWindow {
 public:
    // Content and observer outlive the window. A call of the observer may end the window.
    X11PopoverWindow(const Desk& desk, SurfaceContent& content, PopoverWindowObserver& observer);
    ~X11PopoverWindow() override;

    void place(Point topLeft) override;
    void orderFront() override;
    void makeKeyWindow() override;
    void orderOut() override;
    Rect frame() const override { return {topLeft_, size_}; }
    void setFrame(const Rect& frame) override;
    std::optional<Rect> visibleFrame() const override;

 private:
    enum class Stage { out, placed, shown };

    // The panel's place on the screen, and the window's, which has room for the shadow around it.
    PixelRect panelFrame() const;
    PixelRect windowFrame() const;
    int margin() const;

    void measure();
    void createWindow();
    void destroyWindow();
    // Gets pixels for the size and scale of now; the window itself follows in `settle`, so that what it grew
    // by is painted before it can be seen.
    void form();
    void settle();
    void cutShape();
    void adapt();

    void repaintSoon();
    void repaint();
    bool paint();
    DisplayList picture();

    void handle(const xcb_generic_event_t& event);
    void pointer(PointerEvent::Kind kind, int x, int y);
    void pressed(const xcb_button_press_event_t& event);
    void keyPressed(const xcb_key_press_event_t& event);
    void focusLeft(const xcb_focus_out_event_t& event);
    bool isUnder(const xcb_query_pointer_reply_t& pointer, xcb_window_t window) const;
    void stayOnScreen();
    void askForTheTime();
    void takeFocus(xcb_timestamp_t time);
    void giveFocusBack();
    void holdPointer(int attempts);

    Desk desk_;
    SurfaceContent& content_;
    PopoverWindowObserver& observer_;
    Stage stage_ = Stage::out;
    Point topLeft_;
    Size size_;

    xcb_window_t window_ = XCB_NONE;
    bool isTranslucent_ = false;
    PixelRect formed_;  // what the window was made or configured to
    X11Surface surface_;
    int visibility_ = XCB_VISIBILITY_UNOBSCURED;
    bool isPointerInside_ = false;

    bool isMapped_ = false;
    bool wantsFocus_ = false;
    bool hasFocus_ = false;
    xcb_window_t focusBefore_ = XCB_INPUT_FOCUS_POINTER_ROOT;
    xcb_timestamp_t focusTime_ = XCB_CURRENT_TIME;

    bool isRepaintDue_ = false;
    Cancellation repaint_;
    Cancellation events_;
    Cancellation shown_;
    Cancellation outsidePresses_;
    Cancellation holdPointer_;
    Cancellation appearance_;
    Cancellation screen_;
};

}  // namespace norvane
