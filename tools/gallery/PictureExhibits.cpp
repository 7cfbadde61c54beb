#include "gallery/PictureExhibits.h"

#include <string>

#include "drawing/CompiledPictures.h"
#include "gallery/Captions.h"
#include "gallery/Showing.h"
#include "views/Image.h"
#include "views/ShapeElement.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane::gallery {
namespace {

struct NamedInk {
    const char* name;
    Ink ink;
};
constexpr NamedInk kInks[] = {
    {"primary", Ink::primary},
    {"secondary", Ink::secondary},
    {"labelColor", Ink::labelColor},
    {"secondaryLabelColor", Ink::secondaryLabelColor},
    {"controlAccentColor", Ink::controlAccentColor},
    {"controlBackgroundColor", Ink::controlBackgroundColor},
    {"separator", Ink::separator},
    {"red", Ink::red},
    {"orange", Ink::orange},
    {"yellow", Ink::yellow},
    {"green", Ink::green},
    {"teal", Ink::teal},
    {"blue", Ink::blue},
    {"purple", Ink::purple},
};

}  // namespace

DisplayList symbols(Stage& stage) {
    return pictureOf(stage, [] {
        const CompiledPictures pictures = compiledPictures();
        std::vector<Element> cells = forEach(pictures.symbols, [&](const CompiledPictures::Entry& entry) {
            const std::string name(pictures.nameOf(entry));
            return captioned(name,
                             row(these(symbol(name, {.size = 11}), symbol(name, {.size = 13}, Ink::secondary),
                                       symbol(name, {.size = 20}, Ink::teal)),
                                 8));
        });
        return table(4, std::move(cells));
    });
}

DisplayList images(Stage& stage) {
    return pictureOf(stage, [] {
        const CompiledPictures pictures = compiledPictures();
        std::vector<Element> cells = forEach(pictures.images, [&](const CompiledPictures::Entry& entry) {
            const std::string name(pictures.nameOf(entry));
            const auto high = [&](double height) {
                return image(name, {height * static_cast<double>(entry.width / entry.height), height});
            };
            return captioned(name, row(these(high(22), high(64))));
        });
        return column(std::move(cells), 24);
    });
}

DisplayList inks(Stage& stage) {
    return pictureOf(stage, [] {
        return column(
            forEach(kInks,
                    [](const NamedInk& named) {
                        return labelled(
                            named.name,
                            row(these(shape(Outline::roundedRectangle(6), {.fill = named.ink})
                                          .frame({.width = 60, .height = 22}),
                                      text("Reads like this, 12:34", {.font = {.size = 12}}, named.ink)),
                                12));
                    }),
            6);
    });
}

}  // namespace norvane::gallery
