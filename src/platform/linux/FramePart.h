#pragma once

#include <cairo.h>
#include <vector>

#include "drawing/DisplayList.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/DrawingCaches.h"
#include "platform/linux/PixelPlacement.h"
#include "platform/linux/PixelRect.h"
#include "platform/linux/TextLayouts.h"

namespace norvane {

// The painting of one rectangle of a frame. Each kind of command has its function. Whether all of a frame is
// painted or a part, each pixel comes out the same: everything is put on the same grid, and is cut by
// rectangles of whole pixels only.
class FramePart {
 public:
    using Placement = PixelPlacement;
    struct Tools {
        TextLayouts& layouts;
        DrawingCaches& caches;
    };

    // All outlive the part. `depth` is the number of groups and pictures around it.
    FramePart(cairo_surface_t* surface, const Placement& placement, const PixelRect& pixels,
              const Tools& tools, int depth = 0);

    void paint(const std::vector<DisplayItem>& items);
    // The same over nothing: whatever there was before goes.
    void paintAnew(const std::vector<DisplayItem>& items);

    // For the visit of an item's command.
    void operator()(const FillShape& fill);
    void operator()(const StrokeShape& stroke);
    void operator()(const DrawShadow& shadow);
    void operator()(const DrawText& text);
    void operator()(const DrawSymbol& symbol);
    void operator()(const DrawImage& image);
    void operator()(const DrawPicture& picture);
    void operator()(const DrawGroup& group);
    // Never asked: the items that it shares are painted in its place.
    void operator()(const DrawShared&) {}

 private:
    void paint(const DisplayItem& item);
    // From points to pixels; after it, the context's units are pixels.
    void usePixels() const { cairo_identity_matrix(context_.get()); }
    // The list's origin at that place on the surface, in points.
    void usePoints(cairo_t* context, int x, int y) const;
    // Whether the shape certainly leaves none of these pixels out.
    bool coversAll(const Shape& shape, const PixelRect& area) const;
    // Where a picture of ours that fills the frame is put; empty where it is not to be painted.
    PixelRect placed(const Rect& frame) const;
    PixelRect covering(const Rect& rect) const {
        return pixelsCovering(rect, placement_.scale).moved(placement_.x, placement_.y);
    }
    // The items, painted for themselves: their place on the result is as on this one.
    CairoSurface painted(const std::vector<DisplayItem>& items, const PixelRect& area,
                         const Placement& placement) const;
    // With the source that is set. False where it must be drawn as a path.
    bool paintArc(const Arc& arc, const StrokeStyle& style);
    // False where there is nothing to be seen.
    bool useFill(const Fill& fill) const;
    void cutOut(cairo_surface_t* coverage, const PixelRect& area, const DrawShadow& shadow) const;
    void paintBitmap(const DrawPicture& picture, Point at);

    cairo_surface_t* surface_;
    Placement placement_;
    PixelRect pixels_;  // of the surface; those of the item while one is painted
    Tools tools_;
    // Around them, in points: what is not in there has none of them.
    Rect reach_;
    int depth_;
    CairoContext context_;
};

}  // namespace norvane
