#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr double kUnlimited = TextRuler::kUnlimitedWidth;

TextStyle limited(int lines) {
    return {.font = {}, .lineLimit = lines};
}

class TextRulerTest : public ::testing::Test {
 protected:
    TextMetrics measure(std::string_view text, double width = kUnlimited, const TextStyle& style = {}) {
        return ruler_.measure(text, style, width);
    }
    double widthOf(std::string_view text, const TextStyle& style = {}) {
        return measure(text, kUnlimited, style).size.width;
    }
    double heightOf(std::string_view text, const TextStyle& style = {}) {
        return measure(text, kUnlimited, style).size.height;
    }

    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
};

TEST_F(TextRulerTest, LinesComeFromLineFeedsAndFromTheWidth) {
    const TextMetrics one = measure("Everything is calm");
    EXPECT_EQ(one.lines, 1);
    EXPECT_GT(one.baseline, 0);
    EXPECT_LT(one.baseline, one.size.height);
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
    EXPECT_EQ(measure("").size, (Size{0, one.size.height}));
}

TEST_F(TextRulerTest, LinesAreCountedAndCutWhateverBrokeThem) {
    const double width = widthOf("Everything is calm");
    const double two = widthOf("Everything is") + 1;
    struct Case {
        const char* text;
        int limit;
        double width;
        int lines;
        const char* shown;
    };
    for (const Case& c :
         {Case{"Everything is calm", 1, width, 1, "Everything is calm"},
          Case{"Everything is calm", 1, two, 1, "Everything is calm [cut]"},
          Case{"Everything is calm", 0, two, 2, "Everything is calm"},
          Case{"Everything is calm", -3, two, 2, "Everything is calm"},
          Case{"Everything is calm", 2, two, 2, "Everything is calm"}, Case{"a\nb", 2, kUnlimited, 2, "a\nb"},
          Case{"a\nb", 1, kUnlimited, 1, "a\xE2\x80\xA6"}, Case{"a\n\n", 1, width, 1, "a"},
          Case{"a\nEverything is calm\nc", 2, two, 2, "a\nEverything is calm\xE2\x80\xA6 [cut]"},
          Case{"Everything is calm\nc", 2, two, 2, "Everything is\ncalm\xE2\x80\xA6"},
          Case{"", 1, 0, 1, ""}}) {
        EXPECT_EQ(measure(c.text, c.width, limited(c.limit)).lines, c.lines) << c.text << " in " << c.limit;
        PangoLayout* const layout = layouts_.layout(c.text, limited(c.limit), c.width);
        const std::string cut = pango_layout_is_ellipsized(layout) ? " [cut]" : "";
        EXPECT_EQ(pango_layout_get_text(layout) + cut, c.shown);
    }
    const std::string text =
        "Nothing needs you today, and nothing has needed "
        "you for a long while now";
    for (int limit = 1; limit < 6; ++limit) {
        for (double room = 90; room < 140; room += 7) {
            const TextMetrics metrics = measure(text, room, limited(limit));
            EXPECT_EQ(metrics.lines, std::min(limit, measure(text, room).lines)) << limit << " in " << room;
            EXPECT_NEAR(metrics.size.height, metrics.lines * heightOf("N"), 0.5 * metrics.lines);
            EXPECT_LE(metrics.size.width, room + 0.01);
        }
    }
}

TEST_F(TextRulerTest, ATextFitsIntoTheWidthThatItMeasured) {
    for (const double size : {8.0, 13.0, 17.5}) {
        const TextStyle style{.font = {.size = size, .weight = FontWeight::semibold}};
        const TextMetrics free = measure("Memory is under pressure, 97 %", kUnlimited, style);
        const double moved = (free.size.width + 1234.567) - 1234.567;
        EXPECT_EQ(measure("Memory is under pressure, 97 %", moved, style), free) << size;
    }
}

TEST_F(TextRulerTest, StylesShowInTheMeasureAndTheScaleDoesNot) {
    const TextStyle tabular{.font = {.size = 10, .monospacedDigits = true}};
    EXPECT_EQ(widthOf("1111.1", tabular), widthOf("8888.8", tabular));
    const TextStyle mono{.font = {.size = 10, .design = FontDesign::monospaced}};
    EXPECT_EQ(widthOf("iiii", mono), widthOf("WWWW", mono));
    const TextStyle spaced{.font = {}, .lineSpacing = 4};
    EXPECT_EQ(heightOf("a", spaced), heightOf("a"));
    EXPECT_NEAR(heightOf("a\nb\nc", spaced), heightOf("a\nb\nc") + 8, 0.01) << "between lines only";
    const TextMetrics plain = measure("100% 9.9G", kUnlimited, mono);
    layouts_.rasterizeFor(2);
    EXPECT_EQ(layouts_.count(), 0u) << "glyphs without hints are other layouts";
    EXPECT_EQ(measure("100% 9.9G", kUnlimited, mono), plain);
}

TEST_F(TextRulerTest, AnyBytesAndAnyWidthAreMeasured) {
    EXPECT_GT(widthOf("\xC3(\xA0\xFF\xED\xA0\x80\xF4\x90\x80\x80 end"), widthOf(" end"));
    using namespace std::string_view_literals;
    const std::string_view controls = "a\0b\x01\x1B[31m\x7F\xC2\x85"sv;
    EXPECT_GT(widthOf(controls), widthOf("ab"));
    EXPECT_EQ(measure(controls).lines, 1);
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const double width : {none, -std::numeric_limits<double>::infinity(), 1e300, kUnlimited})
        EXPECT_EQ(measure("some words", width).lines, 1) << width;
    for (const double width : {-5.0, 0.0, 1e-300})
        EXPECT_GE(measure("some words", width).lines, 1) << width;
    for (const double size : {0.0, -3.0, 1e300, none}) {
        const Size found = measure("words", kUnlimited, {.font = {.size = size}, .lineSpacing = size}).size;
        EXPECT_TRUE(std::isfinite(found.width) && found.width > 0) << size;
        EXPECT_TRUE(std::isfinite(found.height) && found.height > 0) << size;
    }
}

TEST_F(TextRulerTest, AGiantTextIsCut) {
    const double m = widthOf("m");
    const double longest = static_cast<double>(TextLayouts::kLongestText) * m;
    EXPECT_NEAR(widthOf(std::string(50'000'000, 'm')), longest, 2 * m);
    std::string wide;
    while (wide.size() < 100'000)
        wide += "\xF0\x9F\x98\x80";
    EXPECT_EQ(measure(wide).size, measure(wide + wide).size);
    EXPECT_EQ(widthOf(std::string(TextLayouts::kLongestText, 'm')), longest) << "not a character less";
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
    const auto aligned = [](TextAlignment alignment) {
        TextStyle style;
        style.alignment = alignment;
        return style;
    };
    const double width = widthOf("In a line");
    struct Case {
        TextAlignment alignment;
        double left;
    };
    for (const Case& c : {Case{TextAlignment::leading, 0}, Case{TextAlignment::center, 15},
                          Case{TextAlignment::trailing, 30}}) {
        const TextStyle style = aligned(c.alignment);
        PangoLayout* const measured = layouts_.layout("In a line", style, kUnlimited);
        for (const double extra : {0.0, 30.0}) {
            const auto shown = layouts_.shown("In a line", style, width + extra);
            EXPECT_EQ(shown.layout, measured);
            EXPECT_NEAR(shown.left, extra > 0 ? c.left : 0, 0.002);
        }
        EXPECT_EQ(layouts_.shown("In a line", style, kUnlimited).layout, measured);
    }
    // Where lines begin is Pango's to say: in what is broken, has lines of its own, or is written from the
    // right.
    for (const auto& [text, room] :
         {std::pair{"In a line", width - 1}, std::pair{"a\nb", 50.0}, std::pair{"\xD7\xA9\xD7\x9C", 50.0}}) {
        const TextStyle style = aligned(TextAlignment::trailing);
        const auto shown = layouts_.shown(text, style, room);
        EXPECT_EQ(shown.layout, layouts_.layout(text, style, room)) << text;
        EXPECT_EQ(shown.left, 0) << text;
    }
}

}  // namespace
}  // namespace norvane
