#pragma once

#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "drawing/DisplayList.h"
#include "platform/linux/BackingStore.h"
#include "platform/linux/CairoPainter.h"

namespace norvane {

// What a window shows: the last picture, and the pixels that came of it. Only what differs between two
// pictures is painted and presented. Main thread only.
class X11Surface {
 public:
    // Works on painted pixels before they are presented.
    using Finish = std::function<void(cairo_surface_t* image, std::span<const PixelRect> painted)>;

    // Both outlive the surface.
    X11Surface(X11Connection& connection, TextLayouts& layouts)
        : connection_(connection), painter_(layouts) {}

    struct Form {
        xcb_window_t window = XCB_NONE;
        X11Connection::Visual visual;
        int width = 1;  // pixels, at least 1
        int height = 1;
        CairoPainter::Placement placement;
    };
    // Gets pixels for a window of this form. Unless it is the form that it has already, the picture is
    // forgotten and the next one painted whole.
    void prepare(const Form& form, Finish finish = nullptr);
    // Gives the pixels back.
    void release();
    // The next picture is painted whole.
    void invalidate() { hasPicture_ = false; }

    // Paints where the picture differs from the last one. False where the server still reads the pixels:
    // nothing was painted, and `handle` will tell when it is time to try again.
    bool paint(DisplayList picture);
    // Has the server show what was painted since the last time.
    void present();

    // The surface's part in an event of its window: shows again what was uncovered. True when a picture that
    // could not be painted can be now.
    bool handle(const xcb_generic_event_t& event);

 private:
    X11Connection& connection_;
    CairoPainter painter_;
    Form form_;
    Finish finish_;
    std::unique_ptr<BackingStore> store_;
    DisplayList picture_;
    bool hasPicture_ = false;
    bool isPutOff_ = false;
    std::vector<PixelRect> painted_;  // and not presented yet
};

}  // namespace norvane
