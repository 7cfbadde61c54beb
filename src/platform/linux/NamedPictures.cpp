#include "platform/linux/NamedPictures.h"

#include <optional>
#include <utility>

#include "drawing/Picture.h"
#include "platform/linux/CairoShapes.h"

namespace norvane {
namespace {

// Paints the picture from the origin over so many pixels.
void paint(cairo_t* context, const Picture& picture, int width, int height) {
    if (!(picture.grid.width > 0) || !(picture.grid.height > 0)) return;
    const double scaleX = width / picture.grid.width;
    const double scaleY = height / picture.grid.height;
    cairo_scale(context, scaleX, scaleY);
    // Outlines and lines reach about as far as the grid: what is off by the scale's unevenness does not
    // matter.
    const double scale = scaleX < scaleY ? scaleX : scaleY;
    for (const PictureLayer& layer : picture.layers) {
        const PlacedPath path{std::make_shared<Path>(layer.path), {}, 1, 1};
        if (!setFill(context, layer.fill, scale) || !addShape(context, path, scale)) continue;
        cairo_set_fill_rule(
            context, layer.rule == FillRule::evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        if (!layer.stroke) {
            cairo_fill(context);
            continue;
        }
        cairo_save(context);
        if (setStroke(context, *layer.stroke, scale)) cairo_stroke(context);
        cairo_restore(context);
        cairo_new_path(context);
    }
}

}  // namespace

NamedPictures::Image NamedPictures::symbol(std::string_view name, int width, int height) {
    return picture(name, CAIRO_FORMAT_A8, width, height);
}

NamedPictures::Image NamedPictures::image(std::string_view name, int width, int height) {
    return picture(name, CAIRO_FORMAT_ARGB32, width, height);
}

NamedPictures::Image NamedPictures::picture(std::string_view name, cairo_format_t format, int width,
                                            int height) {
    if (width < 1 || height < 1 || width > kLargestSide || height > kLargestSide) return nullptr;
    Key key{std::string(name), format, width, height};
    if (const Image* kept = kept_.find(key)) return *kept;
    const std::optional<Picture> found = format == CAIRO_FORMAT_A8 ? symbolNamed(name) : imageNamed(name);
    if (!found) return nullptr;
    Image image(cairo_image_surface_create(format, width, height), CairoDeleter());
    const CairoContext context(cairo_create(image.get()));
    paint(context.get(), *found, width, height);
    cairo_surface_flush(image.get());
    const auto bytes = static_cast<std::size_t>(cairo_image_surface_get_stride(image.get())) *
                       static_cast<std::size_t>(height);
    kept_.keep(std::move(key), image, bytes);
    return image;
}

}  // namespace norvane
