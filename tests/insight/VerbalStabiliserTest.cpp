#include "insight/VerbalStabiliser.h"

#include <gtest/gtest.h>

#include "insight/CPUInsight.h"
#include "insight/HealthySnapshot.h"

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
             Case{"BB", "AA", 2},
             Case{"BBB", "AAB", 0},
             Case{"BABABABA", "AAAAAAAA", 0},
             Case{"BCBCBCBC", "AAAAAAAA", 1},
             Case{"BBA", "AAA", 0},
             Case{"BBAB", "AAAA", 1},
             Case{"BBABBB", "AAAAAB", 0},
             Case{"BBCBB", "AAAAA", 2},
             Case{"BBCCC", "AAAAC", 0},
             Case{"BBBAA", "AABBB", 2},
             Case{"BBBAAA", "AABBBA", 0},
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

TEST(VerbalStabiliser, TakesTheTextOfMissingDataForATextLikeAnyOther) {
    const SystemSnapshot now = healthySnapshot();
    VerbalStabiliser stabiliser;
    stabiliser.appear(cpuInsightText(nullptr, InsightVerbosity::detailed));
    const std::string_view text = cpuInsightText(&now, InsightVerbosity::detailed);
    for (int update = 1; update <= 3; ++update) {
        stabiliser.update(text);
        EXPECT_EQ(stabiliser.displayed(text), update < 3 ? "CPU status unavailable." : text);
    }
}

// Two states with one headline are two texts in full, and one in brief.
TEST(VerbalStabiliser, SeesWhatTheVerbosityLeaves) {
    SystemSnapshot now = healthySnapshot();
    now.cpuState = ComponentState::critical;
    for (const auto verbosity : {InsightVerbosity::detailed, InsightVerbosity::concise}) {
        now.isPCoreSaturated = true;
        VerbalStabiliser stabiliser;
        stabiliser.appear(cpuInsightText(&now, verbosity));
        now.isPCoreSaturated = false;
        stabiliser.update(cpuInsightText(&now, verbosity));
        EXPECT_EQ(stabiliser.candidateTicks(), verbosity == InsightVerbosity::detailed ? 1 : 0);
    }
    VerbalStabiliser stabiliser;
    stabiliser.appear(cpuInsightText(&now, InsightVerbosity::detailed));
    const std::string_view headline = cpuInsightText(&now, InsightVerbosity::concise);
    for (int update = 1; update <= 3; ++update) {
        stabiliser.update(headline);
        EXPECT_EQ(stabiliser.displayed(headline) == headline, update == 3)
            << "another verbosity comes like another text";
    }
}

}  // namespace
}  // namespace norvane
