#include "insight/OpeningRule.h"

#include <gtest/gtest.h>

#include "insight/HealthySnapshot.h"

namespace norvane {
namespace {

using enum SnapshotSection;

class OpeningRuleTest : public testing::Test {
 protected:
    OpeningRuleTest() { full_.isStorageCritical = true; }

    const SystemSnapshot calm_ = healthySnapshot();
    SystemSnapshot full_ = calm_;
    SmartPodManager manager_;
    OpeningRule rule_{manager_};
};

TEST_F(OpeningRuleTest, SmartlyPicksWhatStandsOutThenWhatIsRemembered) {
    EXPECT_EQ(rule_.open(true, nullptr, "memory"), cpu) << "nothing is known yet";
    EXPECT_EQ(rule_.open(true, &full_, "memory"), storage);
    EXPECT_EQ(rule_.open(true, &calm_, "memory"), memory);
    EXPECT_EQ(rule_.open(true, &calm_, std::nullopt), cpu);
}

TEST_F(OpeningRuleTest, OtherwiseOpensTheProcessorOnceAndThenWhatIsRemembered) {
    EXPECT_EQ(rule_.open(false, &full_, "battery"), cpu);
    EXPECT_EQ(rule_.open(false, &full_, "battery"), battery);
    EXPECT_EQ(rule_.open(false, nullptr, "memory"), memory);
    EXPECT_EQ(rule_.open(false, &full_, std::nullopt), cpu);
}

TEST_F(OpeningRuleTest, CountsOnlyOpeningsThatWereNotSmartAsTheFirst) {
    rule_.open(true, &calm_, "battery");
    rule_.open(true, nullptr, "battery");
    EXPECT_EQ(rule_.open(false, &calm_, "battery"), cpu);
    EXPECT_EQ(rule_.open(true, &calm_, "battery"), battery);
    EXPECT_EQ(rule_.open(false, &calm_, "battery"), battery) << "and that only once";
}

TEST_F(OpeningRuleTest, RemembersNoPodThatDoesNotExist) {
    rule_.open(false, nullptr, std::nullopt);
    for (const std::string& stored :
         {std::string(), std::string("Storage"), std::string("storage\0", 8), std::string(1'000'000, 's')}) {
        EXPECT_EQ(rule_.open(false, &calm_, stored), cpu) << stored.substr(0, 20);
        EXPECT_EQ(rule_.open(true, &calm_, stored), cpu) << stored.substr(0, 20);
    }
}

}  // namespace
}  // namespace norvane
