#include "insight/AtVerbosity.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

TEST(AtVerbosity, ConciseIsTheFirstLineThatIsNotEmpty) {
    struct Case {
        std::string_view text, concise;
    };
    for (const Case& c : {Case{"Head.\nOne. Two.", "Head."}, Case{"Head.", "Head."}, Case{"Head.\n", "Head."},
                          Case{"\n\nHead.\nOne.\nTwo.", "Head."}, Case{"\n", ""}, Case{"", ""}}) {
        EXPECT_EQ(atVerbosity(InsightVerbosity::concise, c.text), c.concise) << c.text;
        EXPECT_EQ(atVerbosity(InsightVerbosity::detailed, c.text), c.text);
    }
}

}  // namespace
}  // namespace norvane
