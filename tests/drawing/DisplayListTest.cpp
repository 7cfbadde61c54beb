#include "drawing/DisplayList.h"

#include <gtest/gtest.h>

#include <locale>

namespace norvane {
namespace {

constexpr Color kRed{1, 0, 0, 1};
constexpr Color kHalfBlue{0, 0, 1, 0.5};
constexpr Rect kRect{{1, 2}, {30, 4.5}};

DisplayItem item(std::string key, DrawCommand command) {
    return {std::move(key), kRect, std::move(command)};
}
DisplayList listOf(DrawCommand command) {
    return {{100, 50}, {item("0", std::move(command))}};
}

TEST(PrintedDisplayList, TellsEveryCommandInWords) {
    const auto path = std::make_shared<const Path>(Path{{Path::MoveTo{{0, 0}}, Path::LineTo{{4, 2}}}});
    const auto inner = std::make_shared<const DisplayList>(
        DisplayList{{9, 9}, {item("in", FillShape{RoundedRect{kRect}, kRed})}});
    const TextStyle fine{
        {11, FontWeight::semibold, FontDesign::monospaced, true}, 2, TextAlignment::trailing, 3};
    struct Case {
        const char* name;
        DrawCommand command;
        std::string want;
    };
    for (const Case& c : {
             Case{"fill", FillShape{RoundedRect{kRect}, kRed}, "fill 1,2 30x4.5 rgba(1,0,0,1)"},
             Case{"rounded, snapped", FillShape{RoundedRect{kRect, 2}, kRed, Snapping::toPixels},
                  "fill 1,2 30x4.5 radius 2 snapped rgba(1,0,0,1)"},
             Case{"gentle corners", FillShape{RoundedRect{kRect, 2, CornerStyle::continuous}, kHalfBlue},
                  "fill 1,2 30x4.5 radius 2 continuous rgba(0,0,1,0.5)"},
             Case{"gradient", FillShape{RoundedRect{kRect}, {kRed, kHalfBlue, {1, 2}, {31, 2}}},
                  "fill 1,2 30x4.5 rgba(1,0,0,1) to rgba(0,0,1,0.5) from 1,2 to 31,2"},
             Case{"stroke", StrokeShape{RoundedRect{kRect}, {.width = 0.5}, kRed},
                  "stroke 1,2 30x4.5 width 0.5 rgba(1,0,0,1)"},
             Case{"round line with dashes",
                  StrokeShape{
                      Arc{{5, 6}, 4, 0, 0.25},
                      {.width = 2, .cap = LineCap::round, .join = LineJoin::round, .dashOn = 3, .dashOff = 1},
                      kRed,
                      Snapping::toPixels},
                  "stroke arc 5,6 radius 4 from 0 to 0.25 width 2 round caps round joins dash 3,1 snapped "
                  "rgba(1,0,0,1)"},
             Case{"path", FillShape{PlacedPath{path, {1, 1}, 2, 2}, kRed},
                  "fill path of 2 in 1,1 8x4 rgba(1,0,0,1)"},
             Case{"no path", FillShape{PlacedPath{}, kRed}, "fill path of 0 in 0,0 0x0 rgba(1,0,0,1)"},
             Case{"shadow",
                  DrawShadow{
                      .shape = RoundedRect{kRect}, .stroke = {}, .radius = 6, .offset = {}, .color = kRed},
                  "shadow 1,2 30x4.5 blur 6 rgba(1,0,0,1)"},
             Case{"glow of a line, moved, outside",
                  DrawShadow{RoundedRect{kRect}, StrokeStyle{.width = 3}, 6, {0, 2}, kRed, true},
                  "shadow 1,2 30x4.5 width 3 blur 6 moved 0,2 outside rgba(1,0,0,1)"},
             Case{"text", DrawText{"CPU 1.5 %", {}, kRect, kRed},
                  "text \"CPU 1.5 %\" 1,2 30x4.5 size 13 rgba(1,0,0,1)"},
             Case{"text with everything", DrawText{"a \"b\"\nc\\", fine, kRect, kRed, 0.75, 1},
                  "text \"a \\\"b\\\"\\nc\\\\\" 1,2 30x4.5 size 11 semibold monospaced tabular spacing 2 "
                  "trailing lines "
                  "3 scaled 0.75,1 rgba(1,0,0,1)"},
             Case{"text in the middle",
                  DrawText{
                      "a",
                      {.font = {.size = 9, .weight = FontWeight::medium}, .alignment = TextAlignment::center},
                      kRect,
                      kRed},
                  "text \"a\" 1,2 30x4.5 size 9 medium centered rgba(1,0,0,1)"},
             Case{"bold text", DrawText{"a", {.font = {.size = 9, .weight = FontWeight::bold}}, kRect, kRed},
                  "text \"a\" 1,2 30x4.5 size 9 bold rgba(1,0,0,1)"},
             Case{"symbol", DrawSymbol{"pin.fill", kRect, kRed},
                  "symbol \"pin.fill\" 1,2 30x4.5 rgba(1,0,0,1)"},
             Case{"image", DrawImage{"NorvaneLogo", kRect}, "image \"NorvaneLogo\" 1,2 30x4.5"},
             Case{"picture", DrawPicture{inner, {3, 4}},
                  "picture at 3,4\n  in: fill 1,2 30x4.5 rgba(1,0,0,1)"},
             Case{"no picture", DrawPicture{nullptr, {3, 4}}, "picture at 3,4"},
             Case{"group",
                  DrawGroup{0.5,
                            RoundedRect{kRect, 3},
                            {item("a", DrawImage{"x", kRect}),
                             item("b", DrawGroup{1, {}, {item("c", DrawImage{"y", kRect})}})}},
                  "group opacity 0.5 clip 1,2 30x4.5 radius 3\n"
                  "  a: image \"x\" 1,2 30x4.5\n"
                  "  b: group opacity 1\n"
                  "    c: image \"y\" 1,2 30x4.5"},
         }) {
        EXPECT_EQ(printed(listOf(c.command)), "0: " + c.want + '\n') << c.name;
        EXPECT_EQ(listOf(c.command), listOf(c.command)) << c.name;
    }
}

TEST(PrintedDisplayList, TellsALineForEachItem) {
    EXPECT_EQ(printed({}), "");
    EXPECT_EQ(printed({{9, 9}, {item("a", DrawImage{"x", kRect}), item("b", DrawImage{"y", kRect})}}),
              "a: image \"x\" 1,2 30x4.5\nb: image \"y\" 1,2 30x4.5\n");
}

TEST(PrintedDisplayList, IsTheSameInEveryLocale) {
    struct Elsewhere : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    const DisplayList list = listOf(FillShape{RoundedRect{{{1000, 0.5}, {2500, 1}}, 12.5}, kHalfBlue});
    const std::string here = printed(list);
    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new Elsewhere));
    const std::string elsewhere = printed(list);
    std::locale::global(before);
    EXPECT_EQ(here, "0: fill 1000,0.5 2500x1 radius 12.5 rgba(0,0,1,0.5)\n");
    EXPECT_EQ(elsewhere, here);
}

}  // namespace
}  // namespace norvane
