#include <gtest/gtest.h>
#include <algorithm>
#include <string>

#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr double kUnlimited = TextRuler::kUnlimitedWidth;

class TextLineLimitTest : public ::testing::Test {
 protected:
    static TextStyle style(int limit) { return {.font = {}, .lineLimit = limit}; }
    TextMetrics measure(std::string_view text, int limit, double width) {
        return ruler_.measure(text, style(limit), width);
    }
    // What is shown, with what the line limit left out.
    std::string shown(std::string_view text, int limit, double width) {
        PangoLayout* const layout = layouts_.layout(text, style(limit), width);
        return std::string(pango_layout_get_text(layout)) +
               (pango_layout_is_ellipsized(layout) ? " [cut]" : "");
    }

    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
};

TEST_F(TextLineLimitTest, LinesAreCountedWhateverBrokeThem) {
    const double width = measure("Everything is calm", 0, kUnlimited).size.width;
    const double two = measure("Everything is", 0, kUnlimited).size.width + 1;
    struct Case {
        const char* text;
        int limit;
        double width;
        int lines;
        const char* shown;
    };
    for (const Case& c :
         {Case{"Everything is calm", 1, kUnlimited, 1, "Everything is calm"},
          Case{"Everything is calm", 1, width, 1, "Everything is calm"},
          Case{"Everything is calm", 1, two, 1, "Everything is calm [cut]"},
          Case{"Everything is calm", 0, two, 2, "Everything is calm"},
          Case{"Everything is calm", -3, two, 2, "Everything is calm"},
          Case{"Everything is calm", 2, two, 2, "Everything is calm"}, Case{"a\nb", 2, kUnlimited, 2, "a\nb"},
          Case{"a\nb", 1, kUnlimited, 1, "a\xE2\x80\xA6"}, Case{"a\nb\nc", 2, width, 2, "a\nb\xE2\x80\xA6"},
          Case{"a\n\n", 1, width, 1, "a"},
          Case{"a\nEverything is calm\nc", 2, two, 2, "a\nEverything is calm\xE2\x80\xA6 [cut]"},
          Case{"Everything is calm\nc", 2, two, 2, "Everything is\ncalm\xE2\x80\xA6"},
          Case{"", 1, 0, 1, ""}}) {
        EXPECT_EQ(measure(c.text, c.limit, c.width).lines, c.lines) << c.text << " in " << c.limit;
        EXPECT_EQ(shown(c.text, c.limit, c.width), c.shown);
    }
}

TEST_F(TextLineLimitTest, ALimitedTextIsAsHighAsItsLinesAndNoWiderThanItsRoom) {
    const std::string text = "Nothing needs you today, and nothing has needed you for a long while now";
    const double line = measure("N", 0, kUnlimited).size.height;
    for (int limit = 1; limit < 6; ++limit) {
        for (double width = 90; width < 140; width += 7) {
            const TextMetrics metrics = measure(text, limit, width);
            EXPECT_EQ(metrics.lines, std::min(limit, measure(text, 0, width).lines))
                << limit << " in " << width;
            EXPECT_NEAR(metrics.size.height, metrics.lines * line, 0.5 * metrics.lines);
            EXPECT_LE(metrics.size.width, width + 0.01);
        }
    }
    EXPECT_GE(measure(text, 1, 0).lines, 1) << "also where there is no room at all";
    EXPECT_NE(layouts_.layout(text, style(1), 90), layouts_.layout(text, style(2), 90)) << "kept apart";
}

}  // namespace
}  // namespace norvane
