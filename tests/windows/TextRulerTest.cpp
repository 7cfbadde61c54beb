#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr double kUnlimited = TextRuler::kUnlimitedWidth;

class TextRulerTest : public ::testing::Test {
 protected:
    static TextStyle limited(int lines) { return {.font = {}, .lineLimit = lines}; }
    TextMetrics measure(std::string_view text, double width = kUnlimited, const TextStyle& style = {}) {
        return ruler_.measure(text, style, width);
    }
    Size sizeOf(std::string_view text, const TextStyle& style = {}) {
        return measure(text, kUnlimited, style).size;
    }

    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
};

TEST_F(TextRulerTest, LinesAreCountedAndCutWhateverBrokeThem) {
    const double two = sizeOf("Everything is").width + 1;
    const struct {
        const char* text;
        int limit;
        double width;
        int lines;
        const char* shown;
    } cases[] = {
        {"Everything is calm", 1, two, 1, "Everything is calm [cut]"},
        {"Everything is calm", 2, two, 2, "Everything is calm"},
        {"Donaudampfschifffahrt", -3, 100, 2, "Donaudampfschifffahrt"},
        {"a\nb", 1, kUnlimited, 1, "a\xE2\x80\xA6"},
        {"a\n\n", 1, 100, 1, "a"},
        {"a\nEverything is calm\nc", 2, two, 2, "a\nEverything is calm\xE2\x80\xA6 [cut]"},
        {"Everything is calm\nc", 2, two, 2, "Everything is\ncalm\xE2\x80\xA6"},
        {"", 1, 0, 1, ""},
    };
    const double height = sizeOf("").height;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.shown);
        const TextMetrics metrics = measure(c.text, c.width, limited(c.limit));
        EXPECT_EQ(metrics.lines, c.lines);
        EXPECT_NEAR(metrics.size.height, c.lines * height, 0.5 * c.lines);
        EXPECT_LE(metrics.size.width, c.width + 0.01);
        PangoLayout* const layout = layouts_.layout(c.text, limited(c.limit), c.width);
        const std::string cut = pango_layout_is_ellipsized(layout) ? " [cut]" : "";
        EXPECT_EQ(pango_layout_get_text(layout) + cut, c.shown);
    }
    EXPECT_EQ(measure("Everything is\r\ncalm\x0B \xE2\x80\xA8 \xE2\x80\xA9.").lines, 2)
        << "only line feeds break";
}

TEST_F(TextRulerTest, StylesShowInTheMeasureAndTheScaleDoesNot) {
    for (const double size : {8.0, 13.0, 17.5}) {
        const TextStyle style{.font = {.size = size, .weight = FontWeight::semibold}};
        const TextMetrics free = measure("Memory is under pressure, 97 %", kUnlimited, style);
        const double moved = (free.size.width + 1234.567) - 1234.567;
        EXPECT_EQ(measure("Memory is under pressure, 97 %", moved, style), free) << "it fits into its width";
    }
    const TextStyle tabular{.font = {.size = 10, .monospacedDigits = true}};
    EXPECT_EQ(sizeOf("1111.1", tabular), sizeOf("8888.8", tabular));
    const TextStyle mono{.font = {.size = 10, .design = FontDesign::monospaced}};
    EXPECT_EQ(sizeOf("iiii", mono), sizeOf("WWWW", mono));
    const TextStyle spaced{.font = {}, .lineSpacing = 4};
    EXPECT_EQ(sizeOf("a", spaced), sizeOf("a"));
    EXPECT_NEAR(sizeOf("a\nb\nc", spaced).height, sizeOf("a\nb\nc").height + 8, 0.01) << "between lines only";
    const TextMetrics plain = measure("100% 9.9G", kUnlimited, mono);
    layouts_.rasterizeFor(2);
    EXPECT_EQ(layouts_.count(), 0u) << "glyphs without hints are other layouts";
    EXPECT_EQ(measure("100% 9.9G", kUnlimited, mono), plain);
}

TEST_F(TextRulerTest, AnyBytesAndAnyWidthAreMeasured) {
    using namespace std::string_view_literals;
    EXPECT_GT(sizeOf("\xC3(\xA0\xFF\xED\xA0\x80\xF4\x90\x80\x80 end").width, sizeOf(" end").width);
    EXPECT_GT(sizeOf("a\0b\x01\x1B[31m\x7F\xC2\x85"sv).width, sizeOf("ab").width);
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    for (const double width : {none, -endless, endless, 1e300, -5.0, 0.0, 1e-300})
        EXPECT_GE(measure("some words", width).lines, 1) << width;
    for (const double size : {0.0, -3.0, 1e300, none}) {
        const Size found = sizeOf("words", {.font = {.size = size}, .lineSpacing = size});
        EXPECT_TRUE(std::isfinite(found.width) && found.width > 0) << size;
        EXPECT_TRUE(std::isfinite(found.height) && found.height > 0) << size;
    }
    std::string longest;
    while (longest.size() < 2 * TextLayouts::kLongestText)
        longest += "\xC3\xA9";
    EXPECT_NEAR(sizeOf(longest).width / sizeOf("\xC3\xA9").width, TextLayouts::kLongestText, 1);
    EXPECT_NEAR(sizeOf(std::string(50'000'000, 'm')).width / sizeOf("m").width, TextLayouts::kLongestText, 2);
    std::string wide;
    while (wide.size() < 100'000)
        wide += "\xF0\x9F\x98\x80";
    EXPECT_EQ(sizeOf(wide), sizeOf(wide + wide));
}

TEST_F(TextRulerTest, WhatIsKeptIsBoundedAndNotSetAgain) {
    PangoLayout* const first = layouts_.layout("kept", {}, kUnlimited);
    for (const char* const others : {"", "other "}) {
        for (int i = 0; i < 300; ++i)
            measure(others + std::to_string(i));
        EXPECT_EQ(layouts_.layout("kept", {}, kUnlimited), first) << "it was used in between";
    }
    EXPECT_NE(layouts_.layout("kept", {.font = {.weight = FontWeight::bold}}, kUnlimited), first);
    EXPECT_NE(layouts_.layout("kept", limited(1), kUnlimited), first);
    EXPECT_NE(layouts_.layout("kept", {}, 100), first);
    for (int i = 0; i < 2000; ++i)
        measure(std::to_string(i));
    EXPECT_LE(layouts_.count(), TextLayouts::kMostLayouts);
    for (int i = 0; i < 300; ++i)
        measure(std::string(3900, 'x') + std::to_string(i));
    EXPECT_LE(layouts_.count(), TextLayouts::kMostBytes / 3900);
}

TEST_F(TextRulerTest, WhatFitsIntoALineIsSetOnceForAllPlaces) {
    TextStyle style;
    const double width = sizeOf("In a line").width;
    for (const auto& [alignment, left] :
         {std::pair{TextAlignment::leading, 0}, {TextAlignment::center, 15}, {TextAlignment::trailing, 30}}) {
        style.alignment = alignment;
        PangoLayout* const measured = layouts_.layout("In a line", style, kUnlimited);
        EXPECT_EQ(layouts_.shown("In a line", style, width).layout, measured);
        EXPECT_EQ(layouts_.shown("In a line", style, width + 30).layout, measured);
        EXPECT_NEAR(layouts_.shown("In a line", style, width + 30).left, left, 0.002);
    }
    // Where lines begin is Pango's to say: in what is broken, has lines of its own, or is written from the
    // right.
    for (const auto& [text, room] :
         {std::pair{"In a line", width - 1}, {"a\nb", 50.0}, {"\xD7\xA9\xD7\x9C", 50.0}}) {
        const auto shown = layouts_.shown(text, style, room);
        EXPECT_EQ(shown.layout, layouts_.layout(text, style, room)) << text;
        EXPECT_EQ(shown.left, 0) << text;
    }
}

}  // namespace
}  // namespace norvane
