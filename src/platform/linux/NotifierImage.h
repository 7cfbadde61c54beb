#pragma once

#include <cairo.h>
#include <cstdint>
#include <vector>

namespace norvane {

// A picture as notifier items are sent: a row after the other, each pixel in the four bytes alpha, red, green
// and blue (ARGB32 in network byte order), whose colours are not multiplied by alpha.
struct NotifierImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;

    // What is painted on an image surface of the format ARGB32; empty where there is no such surface.
    static NotifierImage of(cairo_surface_t* surface);

    bool operator==(const NotifierImage&) const = default;
};

}  // namespace norvane
