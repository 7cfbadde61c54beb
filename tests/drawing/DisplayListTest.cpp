#include "drawing/DisplayList.h"

#include <gtest/gtest.h>

#include <locale>

namespace norvane {
namespace {

// Another decimal point.
struct Elsewhere : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};

// A line for each item, what is inside of one further in.
TEST(PrintedDisplayList, TellsEveryCommandInWordsAndTheSameInEveryLocale) {
    const Color red{1, 0, 0, 1}, blue{0, 0, 1, 0.5};
    const Rect rect{{1, 2}, {3000, 4.5}};
    const auto path = std::make_shared<const Path>(Path{{Path::MoveTo{{0, 0}}, Path::LineTo{{4, 2}}}});
    const Font font{11, FontWeight::semibold, FontDesign::monospaced, true};
    const StrokeStyle dashes{2, LineCap::round, LineJoin::round, 3, 1};
    const RoundedRect rounded{rect, 2, CornerStyle::continuous};
    const auto inner =
        std::make_shared<const DisplayList>(DisplayList{{}, {{"in", rect, FillShape{rounded, red}}}});
    const std::vector<DisplayItem> two{{"a", rect, DrawSymbol{"pin.fill", rect, red}},
                                       {"b", rect, DrawPicture{inner, {3, 4}}}};
    const DisplayList list{
        {},
        {{"0", rect, FillShape{RoundedRect{rect}, {red, blue, {1, 2}, {31, 2}}, Snapping::toPixels}},
         {"1", rect, StrokeShape{Arc{{5, 6}, 4, 0, 0.25}, dashes, red}},
         {"2", rect, FillShape{PlacedPath{path, {1, 1}, 2, 2}, red}},
         {"3", rect, DrawShadow{RoundedRect{rect}, StrokeStyle{.width = 3}, 6, {0, 2}, red, true}},
         {"4", rect, DrawText{"a \"b\"\nc\\", {font, 2, TextAlignment::trailing, 3}, rect, red, 0.75, 1}},
         {"5", rect, DrawImage{"NorvaneLogo", rect}},
         {"6", rect, DrawPicture{nullptr, {3, 4}}},
         {"7", rect, DrawGroup{0.5, RoundedRect{rect, 3}, two}}}};
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Elsewhere));
    const std::string words = printed(list);
    std::locale::global(before);
    EXPECT_EQ(words, R"(0: fill 1,2 3000x4.5 snapped rgba(1,0,0,1) to rgba(0,0,1,0.5) from 1,2 to 31,2
1: stroke arc 5,6 radius 4 from 0 to 0.25 width 2 round caps round joins dash 3,1 rgba(1,0,0,1)
2: fill path of 2 in 1,1 8x4 rgba(1,0,0,1)
3: shadow 1,2 3000x4.5 width 3 blur 6 moved 0,2 outside rgba(1,0,0,1)
4: text "a \"b\"\nc\\" 1,2 3000x4.5 size 11 semibold monospaced tabular spacing 2 trailing lines 3 scaled )"
                     R"(0.75,1 rgba(1,0,0,1)
5: image "NorvaneLogo" 1,2 3000x4.5
6: picture at 3,4
7: group opacity 0.5 clip 1,2 3000x4.5 radius 3
  a: symbol "pin.fill" 1,2 3000x4.5 rgba(1,0,0,1)
  b: picture at 3,4
    in: fill 1,2 3000x4.5 radius 2 continuous rgba(1,0,0,1)
)");
}

}  // namespace
}  // namespace norvane
