#include <cairo.h>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

#include "drawing/CompiledPictures.h"
#include "drawing/Picture.h"
#include "platform/linux/CairoHandles.h"

using namespace norvane;

namespace {

constexpr double kMargin = 16;
constexpr double kNameWidth = 150;

void trace(cairo_t* cairo, const Path& path) {
    cairo_new_path(cairo);
    for (const Path::Segment& segment : path.segments) {
        if (const auto* move = std::get_if<Path::MoveTo>(&segment)) {
            cairo_move_to(cairo, move->to.x, move->to.y);
        } else if (const auto* line = std::get_if<Path::LineTo>(&segment)) {
            cairo_line_to(cairo, line->to.x, line->to.y);
        } else if (const auto* curve = std::get_if<Path::CurveTo>(&segment)) {
            cairo_curve_to(cairo, curve->first.x, curve->first.y, curve->second.x, curve->second.y,
                           curve->to.x, curve->to.y);
        } else {
            cairo_close_path(cairo);
        }
    }
}

void setSource(cairo_t* cairo, const Fill& fill) {
    cairo_pattern_t* const pattern =
        cairo_pattern_create_linear(fill.start.x, fill.start.y, fill.end.x, fill.end.y);
    if (fill.isPlain()) {
        cairo_set_source_rgba(cairo, fill.from.red, fill.from.green, fill.from.blue, fill.from.alpha);
    } else {
        cairo_pattern_add_color_stop_rgba(pattern, 0, fill.from.red, fill.from.green, fill.from.blue,
                                          fill.from.alpha);
        cairo_pattern_add_color_stop_rgba(pattern, 1, fill.to.red, fill.to.green, fill.to.blue,
                                          fill.to.alpha);
        cairo_set_source(cairo, pattern);
    }
    cairo_pattern_destroy(pattern);
}

// With its top left corner at `at`; `ink` replaces the colours of a symbol.
void draw(cairo_t* cairo, const Picture& picture, Point at, double width, const Color* ink) {
    cairo_save(cairo);
    cairo_translate(cairo, at.x, at.y);
    const double scale = width / picture.grid.width;
    cairo_scale(cairo, scale, scale);
    for (const PictureLayer& layer : picture.layers) {
        trace(cairo, layer.path);
        setSource(cairo, ink ? Fill(ink->withOpacity(layer.fill.from.alpha)) : layer.fill);
        if (layer.stroke) {
            cairo_set_line_width(cairo, layer.stroke->width);
            cairo_set_line_cap(
                cairo, layer.stroke->cap == LineCap::round ? CAIRO_LINE_CAP_ROUND : CAIRO_LINE_CAP_BUTT);
            cairo_set_line_join(
                cairo, layer.stroke->join == LineJoin::round ? CAIRO_LINE_JOIN_ROUND : CAIRO_LINE_JOIN_MITER);
            cairo_stroke(cairo);
        } else {
            cairo_set_fill_rule(
                cairo, layer.rule == FillRule::evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
            cairo_fill(cairo);
        }
    }
    cairo_restore(cairo);
}

struct Tone {
    Color panel;
    Color ink;
};
constexpr Tone kTones[] = {{{0.96, 0.96, 0.97, 1}, {0.11, 0.11, 0.12, 1}},
                           {{0.13, 0.13, 0.14, 1}, {0.95, 0.95, 0.96, 1}}};

void paint(cairo_t* cairo, double x, double y, double width, double height, const Color& color) {
    setSource(cairo, color);
    cairo_rectangle(cairo, x, y, width, height);
    cairo_fill(cairo);
}

void caption(cairo_t* cairo, const std::string& text, double x, double y, const Color& ink) {
    setSource(cairo, ink);
    cairo_set_font_size(cairo, 11);
    cairo_move_to(cairo, x, y);
    cairo_show_text(cairo, text.c_str());
}

using Pictures = std::vector<std::pair<std::string, Picture>>;

// All symbols in a row each: the points in use, at one scale.
void symbolSheet(const std::string& file, const Pictures& symbols, double scale) {
    constexpr double kSizes[] = {10, 12, 15, 20};
    const double row = 20 * scale + 8;
    const double column = 20 * scale + 12;
    const double half = kNameWidth + 4 * column + kMargin;
    const double height = 2 * kMargin + row * static_cast<double>(symbols.size());
    const CairoSurface surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(2 * half), static_cast<int>(height)));
    const CairoContext cairo(cairo_create(surface.get()));
    double left = 0;
    for (const Tone& tone : kTones) {
        paint(cairo.get(), left, 0, half, height, tone.panel);
        double y = kMargin;
        for (const auto& [name, picture] : symbols) {
            caption(cairo.get(), name, left + kMargin, y + 10 * scale + 4, tone.ink);
            double x = left + kNameWidth;
            for (const double size : kSizes) {
                const double inset = std::floor((20 - size) * scale / 2);
                draw(cairo.get(), picture, {x, y + inset}, size * scale, &tone.ink);
                x += column;
            }
            y += row;
        }
        left += half;
    }
    cairo_surface_write_to_png(surface.get(), file.c_str());
}

// All pictures, large: what is drawn can be judged there, what is seen on the other sheets.
void largeSheet(const std::string& file, const Pictures& pictures, bool hasOwnColors) {
    constexpr int kColumns = 8;
    constexpr double kCell = 150;
    const int rows = (static_cast<int>(pictures.size()) + kColumns - 1) / kColumns;
    const CairoSurface surface(cairo_image_surface_create(
        CAIRO_FORMAT_RGB24, static_cast<int>(kColumns * kCell), static_cast<int>(rows * kCell)));
    const CairoContext cairo(cairo_create(surface.get()));
    paint(cairo.get(), 0, 0, kColumns * kCell, rows * kCell, kTones[0].panel);
    int at = 0;
    for (const auto& [name, picture] : pictures) {
        const double x = at % kColumns * kCell;
        const double y = std::floor(at / kColumns) * kCell;
        paint(cairo.get(), x + 15, y + 5, 120, 120, {0.9, 0.92, 0.95, 1});
        draw(cairo.get(), picture, {x + 15, y + 5}, 120, hasOwnColors ? nullptr : &kTones[0].ink);
        caption(cairo.get(), name, x + 15, y + 140, kTones[0].ink);
        ++at;
    }
    cairo_surface_write_to_png(surface.get(), file.c_str());
}

// The images at the sizes of their grids, at the scales 1 and 2.
void imageSheet(const std::string& file, const Pictures& images) {
    double half = kMargin;
    double height = 0;
    for (const auto& [name, picture] : images) {
        half += 3 * picture.grid.width + 2 * kMargin;
        height = std::max(height, 2 * picture.grid.height + 2 * kMargin);
    }
    const CairoSurface surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(half), static_cast<int>(2 * height)));
    const CairoContext cairo(cairo_create(surface.get()));
    double top = 0;
    for (const Tone& tone : kTones) {
        paint(cairo.get(), 0, top, half, height, tone.panel);
        double x = kMargin;
        for (const auto& [name, picture] : images) {
            for (const double scale : {1.0, 2.0}) {
                draw(cairo.get(), picture, {x, top + kMargin}, picture.grid.width * scale, nullptr);
                x += picture.grid.width * scale + kMargin;
            }
        }
        top += height;
    }
    cairo_surface_write_to_png(surface.get(), file.c_str());
}

}  // namespace

// norvane-contact-sheet FOLDER
int main(int argc, char** argv) {
    if (argc != 2 || !std::filesystem::is_directory(argv[1])) {
        std::cerr << "usage: norvane-contact-sheet FOLDER\n";
        return 2;
    }
    const std::string folder = argv[1];
    const CompiledPictures all = compiledPictures();
    Pictures symbols;
    Pictures images;
    for (const CompiledPictures::Entry& entry : all.symbols) {
        symbols.emplace_back(all.nameOf(entry), symbolNamed(all.nameOf(entry)).value());
    }
    for (const CompiledPictures::Entry& entry : all.images) {
        images.emplace_back(all.nameOf(entry), imageNamed(all.nameOf(entry)).value());
    }
    symbolSheet(folder + "/symbols@1.png", symbols, 1);
    symbolSheet(folder + "/symbols@2.png", symbols, 2);
    largeSheet(folder + "/symbols-large.png", symbols, false);
    largeSheet(folder + "/images-large.png", images, true);
    imageSheet(folder + "/images.png", images);
    return 0;
}
