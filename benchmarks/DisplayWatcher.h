#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/X11Reply.h"

namespace norvane {

// Sees what the program shows, from outside: its windows as the server maps them, and their pixels.
class DisplayWatcher {
 public:
    using Clock = std::chrono::steady_clock;

    struct Shown {
        xcb_window_t window = XCB_NONE;
        Clock::time_point mapped;
        // When its pixels were first seen with something on them.
        Clock::time_point painted;
        // The middle of the window, on the screen.
        int x = 0;
        int y = 0;
    };

    // Null where there is no such display, or it cannot tell of clicks.
    static std::unique_ptr<DisplayWatcher> open(const std::string& display);

    struct Mapped {
        xcb_window_t window = XCB_NONE;
        Clock::time_point at;
    };
    // Waits for the next window of this class to be mapped. None if that takes too long or `isHopeless` says
    // so first.
    std::optional<Mapped> nextMapped(const std::string& windowClass, std::chrono::milliseconds patience,
                                     const std::function<bool()>& isHopeless);
    // Watches the top left corner of a window, where its title is, for that long: when it first stood out
    // from its ground half as much as it did in the end. None where nothing came to stand out.
    std::optional<Clock::time_point> halfPainted(xcb_window_t window, std::chrono::milliseconds duration);
    // Waits for the next window of this class to be mapped and painted. None if that takes too long or
    // `isHopeless` says so first.
    std::optional<Shown> nextShown(const std::string& windowClass, std::chrono::milliseconds patience,
                                   const std::function<bool()>& isHopeless);
    // Waits until the window is unmapped or gone.
    bool waitUntilHidden(xcb_window_t window, std::chrono::milliseconds patience);
    // When the last press of a button was told that was met while waiting; none before the first.
    std::optional<Clock::time_point> lastPress() const { return lastPress_; }
    // Forgets what has happened up to now.
    void skipPast();

 private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

    DisplayWatcher(Connection connection, xcb_window_t root, std::uint8_t inputOpcode)
        : connection_(std::move(connection)), root_(root), inputOpcode_(inputOpcode) {}

    X11Reply<xcb_generic_event_t> nextEvent(Clock::time_point deadline);
    bool hasClass(xcb_window_t window, const std::string& windowClass);
    bool isPainted(xcb_window_t window);
    int contrastOfTitle(xcb_window_t window);

    Connection connection_;
    xcb_window_t root_;
    std::uint8_t inputOpcode_;
    std::optional<Clock::time_point> lastPress_;
};

}  // namespace norvane
