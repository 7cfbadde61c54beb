#include "gallery/Captions.h"

#include <utility>

#include "views/Grid.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr TextStyle kCaption{.font = {.size = 9}};
constexpr double kLabelWidth = 110;
constexpr double kCellWidth = 120;

}  // namespace

Element captioned(const std::string& caption, Element thing) {
    return vstack({.spacing = 6}, std::move(thing), text(caption, kCaption, Ink::secondary));
}

Element labelled(const std::string& label, Element thing) {
    return hstack(
        {.spacing = 12},
        text(label, kCaption, Ink::secondary).frame({.width = kLabelWidth, .horizontal = Alignment::end}),
        std::move(thing));
}

Element column(std::vector<Element> things, double spacing) {
    return vstack({.alignment = Alignment::start, .spacing = spacing}, std::move(things));
}

Element row(std::vector<Element> things, double spacing) {
    return hstack({.spacing = spacing}, std::move(things));
}

Element table(int columns, std::vector<Element> things) {
    return grid({.columns = columns, .columnSpacing = 12, .rowSpacing = 18}, std::move(things))
        .frame({.width = columns * kCellWidth});
}

}  // namespace norvane
