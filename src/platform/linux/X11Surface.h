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
    // Works on painted pixels before they are presented. The parts do not overlap.
    using Finish = std::function<void(cairo_surface_t* image, std::span<const PixelRect> painted)>;

    // Both outlive the surface.
    X11Surface(X11Connection& connection, TextLayouts& layouts)
        : connection_(connection), painter_(layouts) {}

    struct Form {
        xcb_window_t window = XCB_NONE;
        X11Connection::Visual visual;
        int width = 1;  // pixels, at least 1
        int height = 1;
    };
    // Whether there is nothing to wait for: the server may still be reading the pixels of the last picture.
    // Then nothing is to be prepared or painted, and `handle` tells when it is time to try again.
    bool isReady();
    // Gets pixels for a window of this form. Unless it is the form that it has already, the picture is
    // forgotten and the next one painted whole.
    void prepare(const Form& form);
    // Gives the pixels back.
    void release();
    // Gives up what was kept to paint with. The pixels stay.
    void dropCaches() { painter_.caches().clear(); }
    // The next picture is painted whole.
    void invalidate() { hasPicture_ = false; }

    // Paints where the picture, or its place in the window, differs from the last one, and the parts (pixels
    // of the window) that differ for another reason.
    void paint(DisplayList picture, const CairoPainter::Placement& placement,
               std::span<const PixelRect> more = {}, const Finish& finish = nullptr);
    // Has the server show what was painted since the last time.
    void present();

    // The surface's part in an event of its window: shows again what was uncovered. True when a picture that
    // could not be painted can be now.
    bool handle(const xcb_generic_event_t& event);

 private:
    std::vector<PixelRect> damageOf(const DisplayList& picture, const CairoPainter::Placement& placement,
                                    std::span<const PixelRect> more) const;

    X11Connection& connection_;
    CairoPainter painter_;
    Form form_;
    std::unique_ptr<BackingStore> store_;
    DisplayList picture_;
    CairoPainter::Placement placement_;
    bool hasPicture_ = false;
    bool isPutOff_ = false;
    std::vector<PixelRect> painted_;  // and not presented yet
};

}  // namespace norvane
