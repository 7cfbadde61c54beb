#pragma once

#include <cairo.h>
#include <xcb/shm.h>
#include <xcb/xcb.h>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/linux/CairoHandles.h"
#include "platform/linux/PixelRect.h"
#include "platform/linux/X11Connection.h"

namespace norvane {

// The pixels of one window, in memory that the X server reads as well where it can, else sent to it. Nothing
// here waits for the server to show anything: while it may still be reading shared memory the store is busy,
// and whoever wants to paint puts it off until the completion event ends that. Main thread only.
class BackingStore {
 public:
    // For a window of that visual. The connection outlives the store; width and height are at least 1.
    BackingStore(X11Connection& connection, xcb_window_t window, const X11Connection::Visual& visual,
                 int width, int height);
    ~BackingStore();
    BackingStore(const BackingStore&) = delete;
    BackingStore& operator=(const BackingStore&) = delete;

    // The image to paint into, cleared at first. It may be in an error state, for lack of memory.
    cairo_surface_t* image() const { return image_.get(); }
    PixelRect bounds() const { return {0, 0, width_, height_}; }

    // While this is so the image must not be painted into.
    bool isBusy() const { return reading_ > 0; }
    // The window got an event: true if it says that the store is not busy any more.
    bool handle(const xcb_generic_event_t& event);

    // Has the server show these parts of the image.
    void present(std::span<const PixelRect> parts);

 private:
    bool share();
    void send(const PixelRect& part);

    X11Connection& connection_;
    xcb_window_t window_;
    std::uint8_t depth_;
    int width_;
    int height_;
    xcb_gcontext_t context_;
    std::size_t bytes_;
    unsigned char* shared_ = nullptr;  // null where pixels are sent
    xcb_shm_seg_t segment_ = XCB_NONE;
    int reading_ = 0;  // completion events to come
    CairoSurface image_;
    std::vector<unsigned char> outgoing_;
};

}  // namespace norvane
