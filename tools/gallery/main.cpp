#include <cairo.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/PanelTones.h"
#include "gallery/Exhibits.h"
#include "gallery/Stage.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/CairoPainter.h"

using namespace norvane;

namespace {

constexpr int kScales[] = {1, 2};

CairoSurface surfaceOf(int width, int height) {
    CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("too large");
    return surface;
}

// Whether anything at all was painted.
bool isEmpty(cairo_surface_t* surface) {
    cairo_surface_flush(surface);
    const unsigned char* const bytes = cairo_image_surface_get_data(surface);
    const auto count = static_cast<std::size_t>(cairo_image_surface_get_stride(surface)) *
                       static_cast<std::size_t>(cairo_image_surface_get_height(surface));
    for (std::size_t i = 0; i < count; ++i) {
        if (bytes[i] != 0) return false;
    }
    return true;
}

// The picture on the ground of a panel.
void write(const DisplayList& picture, TextLayouts& layouts, bool isDark, int scale,
           const std::filesystem::path& file) {
    const int width = static_cast<int>(std::ceil(picture.size.width * scale));
    const int height = static_cast<int>(std::ceil(picture.size.height * scale));
    const CairoSurface contents = surfaceOf(width, height);
    layouts.rasterizeFor(scale);
    const std::vector<PixelRect> all{{0, 0, width, height}};
    CairoPainter(layouts).paint(contents.get(), {.scale = static_cast<double>(scale)}, picture, all);
    if (isEmpty(contents.get())) throw std::runtime_error("paints nothing");

    const CairoSurface page = surfaceOf(width, height);
    const CairoContext context(cairo_create(page.get()));
    const Color panel = panelTones(isDark).panel;
    cairo_set_source_rgb(context.get(), panel.red, panel.green, panel.blue);
    cairo_paint(context.get());
    cairo_set_source_surface(context.get(), contents.get(), 0, 0);
    cairo_paint(context.get());
    if (cairo_surface_write_to_png(page.get(), file.c_str()) != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

void write(const Exhibit& exhibit, const std::filesystem::path& folder) {
    for (const bool isDark : {false, true}) {
        for (const int scale : kScales) {
            TextLayouts layouts;
            Stage stage(layouts, isDark);
            const DisplayList picture = exhibit.picture(stage);
            const std::string file =
                std::string(exhibit.name) + (isDark ? "-dark@" : "-light@") + std::to_string(scale) + "x.png";
            write(picture, layouts, isDark, scale, folder / file);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: norvane-gallery FOLDER [NAME...]\n";
        return EXIT_FAILURE;
    }
    const std::filesystem::path folder = argv[1];
    const std::vector<std::string_view> wanted(argv + 2, argv + argc);
    bool isComplete = true;
    try {
        std::filesystem::create_directories(folder);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
    for (const Exhibit& exhibit : exhibits()) {
        const bool isWanted = wanted.empty() || std::any_of(wanted.begin(), wanted.end(), [&](auto part) {
                                  return exhibit.name.find(part) != std::string_view::npos;
                              });
        if (!isWanted) continue;
        try {
            write(exhibit, folder);
        } catch (const std::exception& error) {
            std::cerr << exhibit.name << ": " << error.what() << '\n';
            isComplete = false;
        }
    }
    return isComplete ? EXIT_SUCCESS : EXIT_FAILURE;
}
