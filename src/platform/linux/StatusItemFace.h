#pragma once

#include <functional>
#include <vector>

#include "platform/linux/Desk.h"
#include "platform/linux/FrameClock.h"
#include "platform/linux/X11Surface.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// What a status item shows in its window, and the presses on it: the same wherever the window is. It is
// painted when it differs and somebody can see it. Main thread only.
class StatusItemFace {
 public:
    // `onUpdate` looks at where the window is, and paints. All of the desk outlives the face.
    StatusItemFace(const Desk& desk, std::function<void()> onUpdate, std::function<void()> clicked);
    ~StatusItemFace();

    // Null for nothing. The content outlives its use here.
    void setContent(SurfaceContent* content);
    // Has `onUpdate` called in a later turn, once for many.
    void updateSoon();

    // Paints a ground, and the content upon it in that size, as soon as it can be seen and painted. False
    // where that is later.
    bool paint(const X11Surface::Form& form, std::vector<DisplayItem> ground, Size contentSize);
    // Has the server show what was painted.
    void present() { surface_.present(); }

    // The window is off the screen: it does not move. Back on it, it is in sight until the server says
    // otherwise.
    void stop();
    // There is no window any more.
    void release();
    int visibility() const { return visibility_; }

    // The face's part in an event of its window. The last thing to do with one: a click may end the host.
    void handle(const xcb_generic_event_t& event);

 private:
    void update();

    Desk desk_;
    std::function<void()> onUpdate_;
    std::function<void()> clicked_;
    SurfaceContent* content_ = nullptr;
    X11Surface surface_;
    FrameClock frames_;
    int visibility_ = XCB_VISIBILITY_UNOBSCURED;

    bool isUpdateDue_ = false;
    Cancellation update_;
    Cancellation appearance_;
    Cancellation screen_;
    Cancellation dropMemory_;
};

}  // namespace norvane
