#include "platform/linux/X11Properties.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace norvane {

void setProperty(X11Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                 std::span<const std::uint32_t> values) {
    xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, name, type, 32,
                        static_cast<std::uint32_t>(values.size()), values.data());
}

void setProperty(X11Connection& connection, xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                 std::initializer_list<std::uint32_t> values) {
    setProperty(connection, window, name, type, std::span(values.begin(), values.size()));
}

void setNames(X11Connection& connection, xcb_window_t window, std::string_view title) {
    const auto set = [&](xcb_atom_t name, xcb_atom_t type, std::string_view text) {
        xcb_change_property(connection.get(), XCB_PROP_MODE_REPLACE, window, name, type, 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
    };
    // Instance and class, each ended by a NUL.
    static constexpr std::string_view kClass{"norvane\0norvane\0", 16};
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, kClass);
    set(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title);
    set(connection.atoms().netWmName, connection.atoms().utf8String, title);
}

std::uint32_t opaquePixel(double red, double green, double blue) {
    const auto part = [](double value) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
    };
    return 0xFF000000u | part(red) << 16 | part(green) << 8 | part(blue);
}

}  // namespace norvane
