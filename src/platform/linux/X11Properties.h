#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

#include "platform/linux/X11Connection.h"

namespace norvane {

// Sets a property of 32-bit values.
void setProperty(X11Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                 std::span<const std::uint32_t> values);
void setProperty(X11Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                 std::initializer_list<std::uint32_t> values);

// The names by which people, window managers and scripts find a window of ours.
void setNames(X11Connection& connection, xcb_window_t window, std::string_view title);

// A colour as a pixel of our visuals, opaque.
std::uint32_t opaquePixel(double red, double green, double blue);

}  // namespace norvane
