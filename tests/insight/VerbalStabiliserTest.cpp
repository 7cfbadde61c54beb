#include "insight/VerbalStabiliser.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace norvane {
namespace {

// One letter, one text: what each update computes, and what is on screen after it.
TEST(VerbalStabiliser, LetsATextThroughThatThreeUpdatesInARowHaveProduced) {
    struct Case {
        std::string_view updates, displayed;
        int candidateTicks;
    };
    for (const Case& c : {
             Case{"AAAA", "AAAA", 0},
             Case{"BABABABA", "AAAAAAAA", 0},
             Case{"BCBCBCBC", "AAAAAAAA", 1},
             Case{"BBABBB", "AAAAAB", 0},
             Case{"BBCBB", "AAAAA", 2},
             Case{"BBCCC", "AAAAC", 0},
             Case{"BBBBCCC", "AABBBBC", 0},
         }) {
        VerbalStabiliser stabiliser;
        stabiliser.appear("A");
        std::string displayed;
        for (const char letter : c.updates) {
            const std::string text(1, letter);
            const std::string before(stabiliser.displayed(text));
            const bool hasChanged = stabiliser.update(text);
            displayed += stabiliser.displayed(text);
            EXPECT_EQ(hasChanged, displayed.back() != before.front()) << c.updates << " at " << displayed;
        }
        EXPECT_EQ(displayed, c.displayed) << c.updates;
        EXPECT_EQ(stabiliser.candidateTicks(), c.candidateTicks) << c.updates;
        EXPECT_EQ(stabiliser.candidateVerbalText(),
                  c.candidateTicks == 0 ? "" : std::string(1, c.updates.back()));
    }
}

TEST(VerbalStabiliser, ShowsTheLiveTextUntilOneIsFixed) {
    VerbalStabiliser stabiliser;
    EXPECT_EQ(stabiliser.displayed("live"), "live");
    stabiliser.update("A");
    stabiliser.update("A");
    EXPECT_EQ(stabiliser.displayed("live"), "live");
    stabiliser.update("A");
    EXPECT_EQ(stabiliser.displayed("live"), "A");
}

}  // namespace
}  // namespace norvane
