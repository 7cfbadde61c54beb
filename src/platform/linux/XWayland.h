#pragma once

#include <xcb/xcb.h>

namespace norvane {

// Whether the server is one that shows X clients on a Wayland compositor's screen: it says so by an extension
// since its version 23.1, and by its outputs' names before. Asks the server and waits for the answers.
// `hasOutputs` says whether the server can tell of outputs, by RandR 1.3.
bool runsOnWayland(xcb_connection_t* connection, xcb_window_t root, bool hasOutputs);

}  // namespace norvane
