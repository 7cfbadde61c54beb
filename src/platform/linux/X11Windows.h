#pragma once

#include <optional>

#include "platform/linux/PixelRect.h"
#include "platform/linux/X11Connection.h"

namespace norvane {

// Where the window is on the screen, whatever it is in. Asks the server and waits for the answer; none where
// the window is gone.
std::optional<PixelRect> frameOnScreen(X11Connection& connection, xcb_window_t window);

// Adds to the events that the server sends us of a window, whoever's it is: a client has one choice for each
// window, which other parts of ours may have made before. False where the window is gone.
bool listenTo(X11Connection& connection, xcb_window_t window, std::uint32_t events);

}  // namespace norvane
