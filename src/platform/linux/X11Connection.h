#pragma once

#include <xcb/xcb.h>
#include <cstdint>
#include <functional>
#include <memory>
#include <unordered_map>

#include "platform/Cancellation.h"
#include "platform/linux/X11Atoms.h"
#include "platform/linux/X11Reply.h"
#include "platform/Observers.h"

namespace norvane {

// The connection to the X server, on GLib's default main context. Main thread only. A request that fails is
// never fatal; when the server goes away, requests do nothing, replies are null and the end handler is
// called.
class X11Connection {
 public:
    using EventObserver = std::function<void(const xcb_generic_event_t&)>;

    // What of a server's extensions is made use of where they are there. Servers without them are rare: so
    // that there is a way to meet one, each can be left alone.
    struct Uses {
        bool shm = true;
        bool input = true;
        bool shape = true;
        bool fixes = true;
        // Popovers as they have to be under XWayland, on any server.
        bool managedPopovers = false;
    };

    // Connects to the named display, or to the one that DISPLAY names. Null where there is none, where it
    // does not let us in, or where its screen has no visual with 8 bits for each colour.
    static std::unique_ptr<X11Connection> open(const char* display = nullptr) {
        return open(display,
                    {.shm = true, .input = true, .shape = true, .fixes = true, .managedPopovers = false});
    }
    static std::unique_ptr<X11Connection> open(const char* display, const Uses& uses);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* get() const { return connection_; }
    const xcb_screen_t& screen() const { return *screen_; }
    xcb_window_t root() const { return screen_->root; }
    const X11Atoms& atoms() const { return atoms_; }

    // A kind of window: its depth and visual, and a colour map that goes with them.
    struct Visual {
        std::uint8_t depth = 0;
        xcb_visualid_t id = XCB_NONE;
        xcb_colormap_t colormap = XCB_NONE;
    };
    // 24 bits of colour, or the same with opacity; the latter has no id where the server has none.
    const Visual& opaqueVisual() const { return opaque_; }
    const Visual& translucentVisual() const { return translucent_; }
    // The one of that id where it is a translucent one too: servers with OpenGL have many that look alike,
    // and other programs name theirs. Without an id otherwise.
    Visual translucentVisual(xcb_visualid_t id);

    // What the server can do besides the core protocol. The first event number, or major opcode, of each is
    // told with it.
    struct Extension {
        bool isPresent = false;
        std::uint8_t firstEvent = 0;
        std::uint8_t majorOpcode = 0;
    };
    const Extension& shm() const { return shm_; }      // with segments handed over as descriptors
    const Extension& input() const { return input_; }  // XInput 2
    const Extension& randr() const { return randr_; }  // with monitors (1.5)
    const Extension& shape() const { return shape_; }
    const Extension& fixes() const { return fixes_; }
    const Extension& dpms() const { return dpms_; }    // the display's power
    const Extension& saver() const { return saver_; }  // news of the screen saver

    // Whether the screen is a Wayland compositor's. There windows past the window manager do not get the
    // keyboard.
    bool isXWayland() const { return isXWayland_; }
    // Whether a popover is a window that the window manager manages.
    bool hasManagedPopovers() const { return hasManagedPopovers_; }

    // Whether the server's images have our byte order.
    bool hasOurByteOrder() const { return hasOurByteOrder_; }

    // The events that belong to a window: those that name it as the window they were selected on, and the
    // completions of images put into it. Events without a window belong to the root.
    [[nodiscard]] Cancellation onEvent(xcb_window_t window, EventObserver observer);

    // Called once, from the main loop, when the server is gone.
    void setEndHandler(std::function<void()> handler) { ended_ = std::move(handler); }
    bool isAlive() const { return xcb_connection_has_error(connection_) == 0; }

 private:
    struct Source;
    struct Listeners {
        Observers<xcb_generic_event_t> observers;
        int count = 0;  // subscriptions that have not ended
    };

    X11Connection(xcb_connection_t* connection, xcb_screen_t* screen)
        : connection_(connection), screen_(screen) {}
    bool introduce(int screenNumber);
    void findVisuals();
    Visual findVisual(std::uint8_t depth, xcb_visualid_t preferred, bool isRequired) const;
    void addColormap(Visual& visual);
    void listen();

    bool hasEventWaiting();
    bool hasEventArrived();
    void deliverEvents();
    xcb_window_t windowOf(const xcb_generic_event_t& event) const;

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    X11Atoms atoms_;
    Visual opaque_;
    Visual translucent_;
    std::unordered_map<xcb_visualid_t, Visual> otherTranslucent_;  // that were asked for
    Extension shm_;
    Extension input_;
    Extension randr_;
    Extension shape_;
    Extension fixes_;
    Extension dpms_;
    Extension saver_;
    bool isXWayland_ = false;
    bool hasManagedPopovers_ = false;
    bool hasOurByteOrder_ = true;
    Source* source_ = nullptr;
    X11Reply<xcb_generic_event_t> next_;  // taken from XCB's queue, not delivered yet
    std::shared_ptr<std::unordered_map<xcb_window_t, Listeners>> listeners_ =
        std::make_shared<std::unordered_map<xcb_window_t, Listeners>>();
    std::function<void()> ended_;
    bool hasEnded_ = false;
};

}  // namespace norvane
