#include "drawing/DisplayList.h"

#include <gtest/gtest.h>

#include <locale>

namespace norvane {
namespace {

const DisplayList kList{
    {520, 40},
    {{"back", {{0, 0}, {520, 40}}, FillShape{{{{0, 0}, {520, 40}}, 12.5}, {0.1, 0.2, 0.3, 1}}},
     {"rule",
      {{0, 39}, {520, 1}},
      StrokeShape{{{{0, 39.5}, {520, 0}}, 0}, 0.5, Color{1, 1, 1}.withOpacity(0.25)}},
     {"title", {{8, 8}, {60, 16}}, DrawText{"CPU 1.5 %", {}, {{8, 8}, {60, 16}}, {0, 0, 0, 1}}},
     {"value",
      {{80, 8}, {30, 16}},
      DrawText{"a \"b\"",
               {{11, FontWeight::semibold, FontDesign::monospaced, true}, 2, TextAlignment::trailing},
               {{80, 8}, {40, 16}},
               {0, 0, 0, 1},
               0.75}}}};

constexpr const char* kPrinted =
    "back: fill 0,0 520x40 radius 12.5 rgba(0.1,0.2,0.3,1)\n"
    "rule: stroke 0,39.5 520x0 width 0.5 rgba(1,1,1,0.25)\n"
    "title: text \"CPU 1.5 %\" 8,8 60x16 size 13 rgba(0,0,0,1)\n"
    "value: text \"a \\\"b\\\"\" 80,8 40x16 size 11 semibold monospaced tabular spacing 2 trailing condensed "
    "0.75 "
    "rgba(0,0,0,1)\n";

TEST(PrintedDisplayList, TellsALineForEachItem) {
    EXPECT_EQ(printed(kList), kPrinted);
    EXPECT_EQ(printed({}), "");
}

TEST(PrintedDisplayList, IsTheSameInEveryLocale) {
    struct Elsewhere : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    const std::locale here = std::locale::global(std::locale(std::locale::classic(), new Elsewhere));
    const std::string elsewhere = printed(kList);
    std::locale::global(here);
    EXPECT_EQ(elsewhere, kPrinted);
}

}  // namespace
}  // namespace norvane
