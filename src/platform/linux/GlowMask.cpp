#include "platform/linux/GlowMask.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace norvane {
namespace {

// A piece of the picture along one axis, and the place in the mask that it comes from.
struct Piece {
    int at = 0;
    int from = 0;
    int length = 0;
};

unsigned char* rowOf(cairo_surface_t* image, int y) {
    return cairo_image_surface_get_data(image) + std::ptrdiff_t{cairo_image_surface_get_stride(image)} * y;
}

// In numbers of 16 bits, of which a processor adds many at a time. Shares of masks that together are one may
// come to more than full coverage by rounding.
void addRow(unsigned char* __restrict to, const unsigned char* __restrict from, int width,
            std::uint16_t share) {
    for (int x = 0; x < width; ++x) {
        const auto part = static_cast<std::uint16_t>(static_cast<std::uint16_t>(from[x] * share + 128) >> 8);
        const auto sum = static_cast<std::uint16_t>(to[x] + part);
        to[x] = static_cast<unsigned char>(sum > 255 ? 255 : sum);
    }
}

// What a picture of `total` pixels is put together from.
std::vector<Piece> pieces(const GlowMask::Axis& axis, int total) {
    if (axis.alike == 0) return {{0, 0, total}};
    const int middle = total - 2 * axis.end;
    const int first = axis.end + std::min(middle, axis.alike);
    const int last = axis.end + std::min(total - first - axis.end, axis.alike);
    std::vector<Piece> result{{0, 0, first}};
    for (int at = first; at < total - last; at += axis.alike)
        result.push_back({at, axis.end, std::min(axis.alike, total - last - at)});
    result.push_back({total - last, 2 * axis.end + axis.alike - last, last});
    return result;
}

}  // namespace

void GlowMask::addTo(cairo_surface_t* onto, const PixelRect& visible, const PixelRect& box, int share) const {
    if (cairo_surface_status(onto) != CAIRO_STATUS_SUCCESS ||
        cairo_surface_status(coverage.get()) != CAIRO_STATUS_SUCCESS) {
        return;
    }
    const PixelRect all{box.x - margin, box.y - margin, box.width + 2 * margin, box.height + 2 * margin};
    if (all.intersection(visible).isEmpty()) return;
    const std::vector<Piece> columns = pieces(across, all.width);
    cairo_surface_flush(onto);
    for (const Piece& row : pieces(down, all.height)) {
        for (const Piece& column : columns) {
            const PixelRect piece =
                PixelRect{all.x + column.at, all.y + row.at, column.length, row.length}.intersection(visible);
            for (int y = piece.y; y < piece.y + piece.height; ++y) {
                const unsigned char* const from = rowOf(coverage.get(), y - all.y - row.at + row.from) +
                                                  (piece.x - all.x - column.at + column.from);
                unsigned char* const to = rowOf(onto, y - visible.y) + (piece.x - visible.x);
                addRow(to, from, piece.width, static_cast<std::uint16_t>(share));
            }
        }
    }
    cairo_surface_mark_dirty(onto);
}

}  // namespace norvane
