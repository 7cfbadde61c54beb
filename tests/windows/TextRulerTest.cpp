#include <gtest/gtest.h>
#include <cmath>
#include <limits>

#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr double kUnlimited = TextRuler::kUnlimitedWidth;

class TextRulerTest : public ::testing::Test {
 protected:
    TextMetrics measure(std::string_view text, double width = kUnlimited, const TextStyle& style = {}) {
        return ruler_.measure(text, style, width);
    }

    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
};

TEST_F(TextRulerTest, LinesComeFromLineFeedsAndFromTheWidth) {
    const TextMetrics one = measure("Everything is calm");
    EXPECT_EQ(one.lines, 1);
    EXPECT_GT(one.baseline, 0);
    EXPECT_LT(one.baseline, one.size.height);
    EXPECT_EQ(measure("Everything\nis calm").lines, 2);
    EXPECT_EQ(measure("Everything is\r\ncalm\x0B \xE2\x80\xA8 \xE2\x80\xA9.").lines, 2)
        << "only line feeds break";
    const TextMetrics narrow = measure("Everything is calm", one.size.width / 2);
    EXPECT_GE(narrow.lines, 2);
    EXPECT_LE(narrow.size.width, one.size.width / 2);
    EXPECT_NEAR(narrow.size.height, narrow.lines * one.size.height, 0.01);
    const TextMetrics byCharacter = measure("Donaudampfschifffahrt", 30);
    EXPECT_GE(byCharacter.lines, 2);
    EXPECT_LE(byCharacter.size.width, 30);
    EXPECT_EQ(measure("").lines, 1);
    EXPECT_EQ(measure("").size.height, one.size.height);
    EXPECT_EQ(measure("").size.width, 0);
}

TEST_F(TextRulerTest, ATextFitsIntoTheWidthThatItMeasured) {
    for (const double size : {8.0, 11.0, 13.0, 17.5}) {
        const TextStyle style{.font = {.size = size, .weight = FontWeight::semibold}};
        const TextMetrics free = measure("Memory is under pressure, 97 %", kUnlimited, style);
        const double moved = (free.size.width + 1234.567) - 1234.567;
        EXPECT_EQ(measure("Memory is under pressure, 97 %", moved, style), free) << size;
    }
}

TEST_F(TextRulerTest, MeasuresAreTheSameAtEveryScale) {
    const TextStyle style{.font = {.size = 11, .weight = FontWeight::bold, .design = FontDesign::monospaced}};
    const TextMetrics plain = measure("100% 9.9G", kUnlimited, style);
    layouts_.rasterizeFor(2);
    EXPECT_EQ(layouts_.count(), 0u) << "glyphs without hints are other layouts";
    EXPECT_EQ(measure("100% 9.9G", kUnlimited, style), plain);
}

TEST_F(TextRulerTest, TabularDigitsAreEquallyWide) {
    const TextStyle tabular{.font = {.size = 10, .monospacedDigits = true}};
    EXPECT_EQ(measure("1111.1", kUnlimited, tabular).size.width,
              measure("8888.8", kUnlimited, tabular).size.width);
    const TextStyle mono{.font = {.size = 10, .design = FontDesign::monospaced}};
    EXPECT_EQ(measure("iiii", kUnlimited, mono).size.width, measure("WWWW", kUnlimited, mono).size.width);
}

TEST_F(TextRulerTest, SpacingIsAddedBetweenLinesOnly) {
    const TextStyle spaced{.font = {}, .lineSpacing = 4};
    EXPECT_EQ(measure("a", kUnlimited, spaced).size.height, measure("a").size.height);
    EXPECT_NEAR(measure("a\nb\nc", kUnlimited, spaced).size.height, measure("a\nb\nc").size.height + 8, 0.01);
}

TEST_F(TextRulerTest, AnyBytesAndAnyWidthAreMeasured) {
    const std::string broken = "\xC3(\xA0\xFF\xED\xA0\x80\xF4\x90\x80\x80 end";
    EXPECT_GT(measure(broken).size.width, measure(" end").size.width);
    using namespace std::string_view_literals;
    const std::string_view controls = "a\0b\x01\x1B[31m\x7F\xC2\x85"sv;
    EXPECT_GT(measure(controls).size.width, measure("ab").size.width);
    EXPECT_EQ(measure(controls).lines, 1);
    for (const double width : {std::numeric_limits<double>::quiet_NaN(),
                               -std::numeric_limits<double>::infinity(), 1e300, kUnlimited}) {
        EXPECT_EQ(measure("some words", width).lines, 1) << width;
    }
    for (const double width : {-5.0, 0.0, 1e-300})
        EXPECT_GE(measure("some words", width).lines, 1) << width;
    for (const double size : {0.0, -3.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        const TextMetrics metrics =
            measure("words", kUnlimited, {.font = {.size = size}, .lineSpacing = size});
        EXPECT_TRUE(std::isfinite(metrics.size.width) && metrics.size.width > 0) << size;
        EXPECT_TRUE(std::isfinite(metrics.size.height) && metrics.size.height > 0) << size;
    }
}

TEST_F(TextRulerTest, AGiantTextIsCut) {
    const double m = measure("m").size.width;
    const double longest = static_cast<double>(TextLayouts::kLongestText) * m;
    EXPECT_NEAR(measure(std::string(50'000'000, 'm')).size.width, longest, 2 * m);
    std::string wide;
    while (wide.size() < 100'000)
        wide += "\xF0\x9F\x98\x80";
    EXPECT_EQ(measure(wide).size, measure(wide + wide).size);
    EXPECT_EQ(measure(std::string(TextLayouts::kLongestText, 'm')).size.width, longest)
        << "not a character less";
}

TEST_F(TextRulerTest, WhatIsKeptIsBounded) {
    for (int i = 0; i < 2000; ++i)
        measure(std::to_string(i));
    EXPECT_LE(layouts_.count(), TextLayouts::kMostLayouts);
    for (int i = 0; i < 300; ++i)
        measure(std::string(3900, 'x') + std::to_string(i));
    EXPECT_LE(layouts_.count(), TextLayouts::kMostBytes / 3900);
}

TEST_F(TextRulerTest, ATextThatIsAskedForAgainIsNotSetAgain) {
    PangoLayout* const first = layouts_.layout("kept", {}, kUnlimited);
    for (int i = 0; i < 300; ++i)
        layouts_.layout(std::to_string(i), {}, kUnlimited);
    EXPECT_EQ(layouts_.layout("kept", {}, kUnlimited), first);
    for (int i = 0; i < 300; ++i)
        layouts_.layout("other " + std::to_string(i), {}, kUnlimited);
    EXPECT_EQ(layouts_.layout("kept", {}, kUnlimited), first) << "it was used in between";
    EXPECT_NE(layouts_.layout("kept", {.font = {.weight = FontWeight::bold}}, kUnlimited), first);
    EXPECT_NE(layouts_.layout("kept", {}, 100), first);
}

}  // namespace
}  // namespace norvane
