#include "platform/linux/FramePart.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>

#include "platform/linux/ArcCoverage.h"
#include "platform/linux/CairoShapes.h"
#include "platform/linux/GlowForm.h"
#include "platform/linux/GradientBitmap.h"
#include "platform/linux/PixelSnapping.h"
#include "platform/linux/RoundedPath.h"
#include "platform/linux/TextPainting.h"

namespace norvane {
namespace {

// What is nested deeper is left out.
constexpr int kDeepestGroup = 32;
// Points. What is blurred more is blurred so much.
constexpr double kLargestBlur = 120;
// Pixels. A larger list has no bitmap of its own and is painted each time.
constexpr std::int64_t kLargestBitmap = 2 * 1024 * 1024;
// Of a pixel, or of full strength: what is nearer than that is taken for the same.
constexpr double kUnseen = 1.0 / 256;

// Two masks of whole points, and how far the radius is from the first to the second. Blurs of all radii in
// between would not look different, and would each need a mask.
struct Blur {
    double radius = 0;
    double toNext = 0;
};

std::optional<Blur> blurOf(double radius) {
    if (std::isnan(radius)) return std::nullopt;
    const double bounded = std::clamp(radius, 0.0, kLargestBlur);
    const double whole = std::floor(bounded);
    const double rest = bounded - whole;
    if (rest < kUnseen) return Blur{whole, 0};
    if (rest > 1 - kUnseen) return Blur{whole + 1, 0};
    return Blur{whole, rest};
}

PixelRect around(const PixelRect& rect, int margin) {
    return {rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin};
}

}  // namespace

FramePart::FramePart(cairo_surface_t* surface, const Placement& placement, const PixelRect& pixels,
                     const Tools& tools, int depth)
    : surface_(surface),
      placement_(placement),
      pixels_(pixels),
      tools_(tools),
      reach_(pixels.moved(-placement.x, -placement.y).inPoints(placement.scale).outset(1 / placement.scale)),
      depth_(depth),
      context_(cairo_create(surface)) {}

void FramePart::paintAnew(const std::vector<DisplayItem>& items) {
    cairo_t* const context = context_.get();
    cairo_rectangle(context, pixels_.x, pixels_.y, pixels_.width, pixels_.height);
    const auto* const ground = items.empty() ? nullptr : std::get_if<FillShape>(&items.front().command);
    const bool isGround = ground != nullptr && ground->snapping == Snapping::none && ground->fill.isPlain() &&
                          covering(items.front().bounds).intersection(pixels_) == pixels_ &&
                          coversAll(ground->shape, pixels_) && setColor(context, ground->fill.from);
    cairo_set_operator(context, isGround ? CAIRO_OPERATOR_SOURCE : CAIRO_OPERATOR_CLEAR);
    cairo_fill(context);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
    for (std::size_t i = isGround ? 1 : 0; i < items.size(); ++i)
        paint(items[i]);
}

void FramePart::paint(const std::vector<DisplayItem>& items) {
    for (const DisplayItem& item : items)
        paint(item);
}

void FramePart::paint(const DisplayItem& item) {
    if (!item.bounds.intersects(reach_)) return;
    if (const auto* shared = std::get_if<DrawShared>(&item.command)) {
        if (shared->items) paint(*shared->items);
        return;
    }
    const PixelRect all = pixels_;
    pixels_ = covering(item.bounds).intersection(all);
    if (!pixels_.isEmpty()) {
        cairo_t* const context = context_.get();
        cairo_save(context);
        cairo_rectangle(context, pixels_.x, pixels_.y, pixels_.width, pixels_.height);
        cairo_clip(context);
        usePoints(context, placement_.x, placement_.y);
        std::visit(*this, item.command);
        cairo_restore(context);
        // Neither a path that was not used nor an error is to reach the next item: an error would stay with
        // the context and swallow everything after it.
        cairo_new_path(context);
        if (cairo_status(context) != CAIRO_STATUS_SUCCESS) context_.reset(cairo_create(surface_));
    }
    pixels_ = all;
}

void FramePart::operator()(const FillShape& fill) {
    if (!useFill(fill.fill)) return;
    const bool snaps = fill.snapping == Snapping::toPixels;
    if (!snaps && coversAll(fill.shape, pixels_)) {
        cairo_paint(context_.get());  // as it would be filled, without a way around it
        return;
    }
    const bool isDrawn = addShape(
        context_.get(), snaps ? snappedToPixels(fill.shape, placement_.scale) : fill.shape, placement_.scale);
    if (isDrawn) cairo_fill(context_.get());
}

void FramePart::operator()(const StrokeShape& given) {
    if (!useFill(given.fill)) return;
    const bool snaps = given.snapping == Snapping::toPixels;
    const StrokeShape snapped = snaps ? snappedToPixels(given, placement_.scale) : StrokeShape{};
    const StrokeShape& stroke = snaps ? snapped : given;
    if (const auto* arc = std::get_if<Arc>(&stroke.shape); arc != nullptr && paintArc(*arc, stroke.style))
        return;
    if (setStroke(context_.get(), stroke.style, placement_.scale) &&
        addShape(context_.get(), stroke.shape, placement_.scale)) {
        cairo_stroke(context_.get());
    }
}

bool FramePart::paintArc(const Arc& arc, const StrokeStyle& style) {
    const double scale = placement_.scale;
    StrokeStyle line = style;
    line.width *= scale;
    line.dashOn *= scale;
    line.dashOff *= scale;
    const Point center{arc.center.x * scale + placement_.x, arc.center.y * scale + placement_.y};
    if (isClosed(arc) && !isDashed(style, scale) && isFinite(center)) {
        const Point whole{std::floor(center.x), std::floor(center.y)};
        const auto ring = tools_.caches.rings.ring({center.x - whole.x, center.y - whole.y},
                                                   arc.radius * scale, line.width);
        if (!ring || std::abs(whole.x) > kFarthestPixel || std::abs(whole.y) > kFarthestPixel) return false;
        usePixels();
        cairo_mask_surface(context_.get(), ring->mask.get(), whole.x + ring->area.x, whole.y + ring->area.y);
        return true;
    }
    const auto coverage = ArcCoverage::of({center, arc.radius * scale, arc.from, arc.to}, line, pixels_);
    if (!coverage) return false;
    if (!coverage->mask) return true;
    usePixels();
    cairo_mask_surface(context_.get(), coverage->mask.get(), coverage->area.x, coverage->area.y);
    return true;
}

bool FramePart::useFill(const Fill& fill) const {
    if (!setFill(context_.get(), fill, placement_.scale)) return false;
    if (const CairoSurface bitmap = gradientBitmap(fill, placement_, pixels_)) {
        usePixels();
        cairo_set_source_surface(context_.get(), bitmap.get(), pixels_.x, pixels_.y);
        cairo_pattern_set_filter(cairo_get_source(context_.get()), CAIRO_FILTER_NEAREST);
        usePoints(context_.get(), placement_.x, placement_.y);
    }
    return true;
}

void FramePart::operator()(const DrawShadow& shadow) {
    const double scale = placement_.scale;
    const auto blur = blurOf(shadow.radius);
    const auto form = GlowForm::of(shadow.shape, shadow.stroke, scale);
    if (!blur || !form || !isFinite(shadow.offset) || !setColor(context_.get(), shadow.color)) return;
    const auto first = tools_.caches.glows.mask(*form, blur->radius * scale / 2);
    const auto second =
        blur->toNext > 0 ? tools_.caches.glows.mask(*form, (blur->radius + 1) * scale / 2) : nullptr;
    if (!first || (blur->toNext > 0 && !second)) return;

    // Masks lie on whole pixels. Of what is blurred nobody sees that it is off by less.
    Rect bounds = boundsOf(shadow.shape);
    if (std::holds_alternative<RoundedRect>(shadow.shape)) bounds = withinReach(bounds, scale);
    const auto corner = [scale](double middle, double offset, int extent) {
        return static_cast<int>(std::floor(
            std::clamp((middle + offset) * scale - extent / 2.0, -kFarthestPixel, kFarthestPixel) + 0.5));
    };
    const PixelRect box =
        PixelRect{corner(bounds.midX(), shadow.offset.x, form->width),
                  corner(bounds.midY(), shadow.offset.y, form->height), form->width, form->height}
            .moved(placement_.x, placement_.y);
    if (shadow.isOutsideOnly && !shadow.stroke && coversAll(shadow.shape, pixels_)) return;
    const PixelRect area =
        around(box, std::max(first->margin, second ? second->margin : 0)).intersection(pixels_);
    if (area.isEmpty()) return;

    if (!second && !shadow.isOutsideOnly && first->across.alike == 0 && first->down.alike == 0) {
        usePixels();
        cairo_mask_surface(context_.get(), first->coverage.get(), box.x - first->margin,
                           box.y - first->margin);
        return;
    }
    const CairoSurface mixed(cairo_image_surface_create(CAIRO_FORMAT_A8, area.width, area.height));
    const int share = static_cast<int>(std::lround(256 * blur->toNext));
    first->addTo(mixed.get(), area, box, 256 - share);
    if (second) second->addTo(mixed.get(), area, box, share);
    if (shadow.isOutsideOnly) cutOut(mixed.get(), area, shadow);
    usePixels();
    cairo_mask_surface(context_.get(), mixed.get(), area.x, area.y);
}

// Leaves out of the coverage, whose corner is the area's, where the shape itself is.
void FramePart::cutOut(cairo_surface_t* coverage, const PixelRect& area, const DrawShadow& shadow) const {
    const CairoContext context(cairo_create(coverage));
    cairo_set_operator(context.get(), CAIRO_OPERATOR_DEST_OUT);
    usePoints(context.get(), placement_.x - area.x, placement_.y - area.y);
    if (!addShape(context.get(), shadow.shape, placement_.scale)) return;
    if (!shadow.stroke) {
        cairo_fill(context.get());
    } else if (setStroke(context.get(), *shadow.stroke, placement_.scale)) {
        cairo_stroke(context.get());
    }
    cairo_surface_flush(coverage);
}

void FramePart::operator()(const DrawText& text) {
    if (setColor(context_.get(), text.color))
        paintText(context_.get(), text, placement_.scale, tools_.layouts);
}

void FramePart::operator()(const DrawSymbol& symbol) {
    const PixelRect at = placed(symbol.frame);
    const auto coverage = tools_.caches.named.symbol(symbol.name, at.width, at.height);
    if (!coverage || !setColor(context_.get(), symbol.color)) return;
    usePixels();
    cairo_mask_surface(context_.get(), coverage.get(), at.x, at.y);
}

void FramePart::operator()(const DrawImage& image) {
    const PixelRect at = placed(image.frame);
    const auto bitmap = tools_.caches.named.image(image.name, at.width, at.height);
    if (!bitmap) return;
    usePixels();
    cairo_set_source_surface(context_.get(), bitmap.get(), at.x, at.y);
    cairo_paint(context_.get());
}

void FramePart::operator()(const DrawPicture& picture) {
    const double scale = placement_.scale;
    const Point at{picture.at.x * scale, picture.at.y * scale};
    if (!picture.picture || !isFinite(at) || std::abs(at.x) > kFarthestPixel ||
        std::abs(at.y) > kFarthestPixel || !(picture.opacity > 0) || depth_ >= kDeepestGroup) {
        return;
    }
    const PixelRect extent = pixelsCovering(Rect{{}, picture.picture->size}, scale);
    if (extent.isEmpty()) return;
    if (std::int64_t{extent.width} * extent.height <= kLargestBitmap) {
        paintBitmap(picture, at);
        return;
    }
    if (picture.opacity < 1) {
        const Rect all{picture.at, picture.picture->size};
        (*this)(
            DrawGroup{picture.opacity, std::nullopt, {{"", all, DrawPicture{picture.picture, picture.at}}}});
        return;
    }
    const Placement moved{scale, placement_.x + pixelsAt(at.x, 1), placement_.y + pixelsAt(at.y, 1)};
    const PixelRect area = extent.moved(moved.x, moved.y).intersection(pixels_);
    if (area.isEmpty()) return;
    FramePart(surface_, moved, area, tools_, depth_ + 1).paint(picture.picture->items);
}

void FramePart::paintBitmap(const DrawPicture& picture, Point at) {
    const double scale = placement_.scale;
    auto bitmap = tools_.caches.pictures.find(picture.picture, scale);
    if (!bitmap) {
        const PixelRect extent = pixelsCovering(Rect{{}, picture.picture->size}, scale);
        bitmap = painted(picture.picture->items, extent, {scale, 0, 0});
        tools_.caches.pictures.keep(picture.picture, scale, bitmap);
    }
    const double reach = picture.snapping == Snapping::toPixels ? 1 : kUnseen;
    const double x = std::abs(at.x - std::round(at.x)) < reach ? std::round(at.x) : at.x;
    const double y = std::abs(at.y - std::round(at.y)) < reach ? std::round(at.y) : at.y;
    usePixels();
    cairo_set_source_surface(context_.get(), bitmap.get(), placement_.x + x, placement_.y + y);
    const bool isOnPixels = x == std::round(x) && y == std::round(y);
    cairo_pattern_set_filter(cairo_get_source(context_.get()),
                             isOnPixels ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
    cairo_paint_with_alpha(context_.get(), std::min(picture.opacity, 1.0));
}

void FramePart::operator()(const DrawGroup& group) {
    if (!(group.opacity > 0) || depth_ >= kDeepestGroup) return;
    PixelRect area = pixels_;
    bool isCut = false;
    if (group.clip) {
        if (!isFinite(group.clip->rect)) return;
        area = covering(group.clip->rect).intersection(pixels_);
        isCut = !coversAll(*group.clip, area);
    }
    if (area.isEmpty()) return;
    // Where nothing has to be laid over as a whole, the items are painted straight on.
    if (!(group.opacity < 1) && !isCut) {
        FramePart(surface_, placement_, area, tools_, depth_ + 1).paint(group.items);
        return;
    }

    const Placement inside{placement_.scale, placement_.x - area.x, placement_.y - area.y};
    const CairoSurface whole = painted(group.items, {0, 0, area.width, area.height}, inside);
    if (isCut) {
        const CairoContext cutting(cairo_create(whole.get()));
        cairo_set_operator(cutting.get(), CAIRO_OPERATOR_DEST_IN);
        usePoints(cutting.get(), inside.x, inside.y);
        if (!addShape(cutting.get(), *group.clip, placement_.scale)) return;
        cairo_fill(cutting.get());
        cairo_surface_flush(whole.get());
    }
    usePixels();
    cairo_rectangle(context_.get(), area.x, area.y, area.width, area.height);
    cairo_clip(context_.get());
    cairo_set_source_surface(context_.get(), whole.get(), area.x, area.y);
    cairo_pattern_set_filter(cairo_get_source(context_.get()), CAIRO_FILTER_NEAREST);
    cairo_paint_with_alpha(context_.get(), std::min(group.opacity, 1.0));
}

// Its straight middle, across or down.
bool FramePart::coversAll(const Shape& shape, const PixelRect& area) const {
    const auto* const rounded = std::get_if<RoundedRect>(&shape);
    if (rounded == nullptr || !isFinite(rounded->rect)) return false;
    const double scale = placement_.scale;
    const double corner = cornerReach(*rounded);
    const auto contains = [&](const Rect& rect) {
        return area.x - placement_.x >= rect.minX() * scale - kUnseen &&
               area.y - placement_.y >= rect.minY() * scale - kUnseen &&
               area.x - placement_.x + area.width <= rect.maxX() * scale + kUnseen &&
               area.y - placement_.y + area.height <= rect.maxY() * scale + kUnseen;
    };
    return contains(rounded->rect.inset(Insets::horizontal(corner))) ||
           contains(rounded->rect.inset(Insets::vertical(corner)));
}

void FramePart::usePoints(cairo_t* context, int x, int y) const {
    cairo_identity_matrix(context);
    cairo_translate(context, x, y);
    cairo_scale(context, placement_.scale, placement_.scale);
}

PixelRect FramePart::placed(const Rect& frame) const {
    if (frame.isEmpty() || !isFinite(frame)) return {};
    const double scale = placement_.scale;
    return PixelRect{pixelsAt(frame.minX(), scale), pixelsAt(frame.minY(), scale),
                     std::max(1, pixelsAt(frame.size.width, scale)),
                     std::max(1, pixelsAt(frame.size.height, scale))}
        .moved(placement_.x, placement_.y);
}

CairoSurface FramePart::painted(const std::vector<DisplayItem>& items, const PixelRect& area,
                                const Placement& placement) const {
    CairoSurface result(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, area.width, area.height));
    FramePart(result.get(), placement, area, tools_, depth_ + 1).paint(items);
    cairo_surface_flush(result.get());
    return result;
}

}  // namespace norvane
