#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "scenario/Durations.h"
#include "scenario/ScenarioPlayer.h"
#include "Transcripts.h"

namespace norvane {
namespace {

// What must be seen at a time, by the table of a story.
struct Moment {
    std::chrono::nanoseconds at{0};
    std::string what;
    Json mustBe;
};

// The rows of the table "| at | what | must be |", all others passed over.
std::vector<Moment> momentsIn(const std::string& prose) {
    static const std::regex row(R"(\| ([0-9:.]+) \| ([A-Za-z.]+) \| (.*) \|)");
    std::vector<Moment> moments;
    for (const std::string& line : linesOf(prose)) {
        std::smatch parts;
        if (!std::regex_match(line, parts, row)) {
            EXPECT_FALSE(line.starts_with("| 0")) << "a row that is not understood: " << line;
            continue;
        }
        const auto at = elapsedOf(parts[1].str());
        EXPECT_TRUE(at) << line;
        moments.push_back({at.value_or(std::chrono::nanoseconds(0)), parts[2], parsedJson(parts[3].str())});
    }
    return moments;
}

// What is wrong with the moment, for people to read; empty if nothing is.
std::string objectionTo(const Moment& moment, const Sight& sight) {
    const auto things = shownThingsNamed(moment.what);
    if (things.size() != 1) return "there is no \"" + moment.what + "\" to look at";
    const Json is = things.front()->shown(sight);
    if (is == moment.mustBe) return {};
    return elapsedText(moment.at) + ' ' + moment.what + " is " + printedJson(is) + ", and must be " +
           printedJson(moment.mustBe);
}

std::vector<std::string> stories() {
    std::vector<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::string(NORVANE_SOURCE_DIR) + "/tests/stories")) {
        if (entry.path().extension() == ".jsonl") names.push_back(entry.path().stem().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

class StoriesTest : public testing::TestWithParam<std::string> {};

TEST_P(StoriesTest, ComesToPassAsItIsTold) {
    const std::string path = "tests/stories/" + GetParam();
    std::vector<Moment> moments = momentsIn(contentsOf(path + ".md"));
    ASSERT_GT(moments.size(), 10U);

    std::vector<std::string> printed;
    ScenarioPlayer player([&printed](std::string_view line) { printed.emplace_back(line); });
    const auto lookBefore = [&moments](const Sight& sight, std::chrono::nanoseconds next) {
        std::erase_if(moments, [&](const Moment& moment) {
            if (moment.at >= next) return false;
            EXPECT_EQ(objectionTo(moment, sight), "");
            return true;
        });
    };
    player.onLeaving([&](const Sight& sight, auto, auto next) { lookBefore(sight, next); });
    for (const std::string& line : linesOf(contentsOf(path + ".jsonl")))
        player.play(line);
    lookBefore(player.sight(), player.elapsed() + std::chrono::nanoseconds(1));
    EXPECT_TRUE(moments.empty()) << "the story ends before " << elapsedText(moments.front().at);

    EXPECT_EQ(printed, linesOf(contentsOf(path + ".transcript")));
}

std::string testNameOf(const testing::TestParamInfo<std::string>& story) {
    std::string name = story.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(All, StoriesTest, testing::ValuesIn(stories()), testNameOf);

}  // namespace
}  // namespace norvane
