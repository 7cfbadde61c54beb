#include "drawing/Picture.h"

#include <algorithm>

#include "drawing/CompiledPictures.h"

namespace norvane {
namespace {

Color colorOf(const float (&parts)[4]) {
    return {parts[0], parts[1], parts[2], parts[3]};
}

PictureLayer layerOf(const CompiledPictures& all, const CompiledPictures::Layer& compiled) {
    PictureLayer layer;
    const float* number = all.numbers.data() + compiled.firstNumber;
    const auto point = [&number] {
        const Point made{number[0], number[1]};
        number += 2;
        return made;
    };
    layer.path.segments.reserve(compiled.steps.count);
    for (const char step : all.steps.substr(compiled.steps.first, compiled.steps.count)) {
        switch (step) {
            case 'M':
                layer.path.segments.emplace_back(Path::MoveTo{point()});
                break;
            case 'L':
                layer.path.segments.emplace_back(Path::LineTo{point()});
                break;
            case 'C': {
                const Point first = point();
                const Point second = point();
                layer.path.segments.emplace_back(Path::CurveTo{first, second, point()});
                break;
            }
            default:
                layer.path.segments.emplace_back(Path::Close{});
                break;
        }
    }
    layer.rule = compiled.isEvenOdd ? FillRule::evenOdd : FillRule::nonZero;
    if (compiled.lineWidth > 0) {
        StrokeStyle line;
        line.width = compiled.lineWidth;
        line.cap = compiled.hasRoundCaps ? LineCap::round : LineCap::butt;
        line.join = compiled.hasRoundJoins ? LineJoin::round : LineJoin::miter;
        layer.stroke = line;
    }
    layer.fill = {colorOf(compiled.from),
                  colorOf(compiled.to),
                  {compiled.gradient[0], compiled.gradient[1]},
                  {compiled.gradient[2], compiled.gradient[3]}};
    return layer;
}

std::optional<Picture> pictureNamed(std::string_view name, const CompiledPictures& all,
                                    std::span<const CompiledPictures::Entry> entries) {
    const auto found = std::lower_bound(entries.begin(), entries.end(), name,
                                        [&](const CompiledPictures::Entry& entry, std::string_view wanted) {
                                            return all.nameOf(entry) < wanted;
                                        });
    if (found == entries.end() || all.nameOf(*found) != name) return std::nullopt;
    Picture picture;
    picture.grid = {found->width, found->height};
    picture.layers.reserve(found->layers.count);
    for (const CompiledPictures::Layer& layer :
         all.layers.subspan(found->layers.first, found->layers.count)) {
        picture.layers.push_back(layerOf(all, layer));
    }
    return picture;
}

}  // namespace

std::optional<Picture> symbolNamed(std::string_view name) {
    const CompiledPictures all = compiledPictures();
    return pictureNamed(name, all, all.symbols);
}

std::optional<Picture> imageNamed(std::string_view name) {
    const CompiledPictures all = compiledPictures();
    return pictureNamed(name, all, all.images);
}

}  // namespace norvane
