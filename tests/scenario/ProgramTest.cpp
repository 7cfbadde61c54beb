#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Transcripts.h"

namespace norvane {
namespace {

namespace fs = std::filesystem;

// The real program, called as people call it.
class ScenarioProgramTest : public testing::Test {
 protected:
    void SetUp() override {
        folder_ = fs::path(testing::TempDir()) / ("norvane-scenario-" + std::to_string(std::rand()));
        fs::create_directories(folder_);
    }
    void TearDown() override { fs::remove_all(folder_); }

    // Whether it ended with success.
    bool run(const std::string& arguments, const std::string& output = "output") {
        const std::string command = "cd '" + folder_.string() + "' && '" + NORVANE_BINARY_DIR +
                                    "/norvane-scenario' " + arguments + " >" + output + " 2>errors";
        return std::system(command.c_str()) == 0;
    }
    void write(const std::string& name, const std::string& contents) const {
        std::ofstream(folder_ / name, std::ios::binary) << contents;
    }
    std::string read(const std::string& name) const {
        std::ifstream stream(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

 private:
    fs::path folder_;
};

// What stands in the blocks of this language, one after another.
std::vector<std::string> blocksIn(const std::string& text, const std::string& language) {
    const std::string opening = "```" + language + "\n";
    std::vector<std::string> blocks;
    for (std::size_t at = text.find(opening); at != std::string::npos; at = text.find(opening, at)) {
        at += opening.size();
        blocks.push_back(text.substr(at, text.find("```", at) - at));
    }
    return blocks;
}

TEST_F(ScenarioProgramTest, PrintsWhatTheManualSays) {
    const std::string manual = contentsOf("tools/README.md");
    write("sample.jsonl", blocksIn(manual, "json").at(0));
    EXPECT_TRUE(run("sample.jsonl")) << read("errors");
    EXPECT_EQ(read("output"), blocksIn(manual, "text").at(0));
    EXPECT_EQ(read("errors"), "");
    EXPECT_GT(linesOf(read("output")).size(), 5U);
}

// The document tells the story turn by turn, with nothing left out in between. What the player makes of the
// story is compared with its transcript elsewhere.
TEST(AnAfternoon, TellsTheTranscriptOfItsStory) {
    std::string told;
    for (const std::string& turn : blocksIn(contentsOf("docs/an-afternoon.md"), "text"))
        told += turn;
    EXPECT_EQ(contentsOf("tests/stories/bad-afternoon.transcript"), told);
}

TEST_F(ScenarioProgramTest, NamesFileAndLineOfAnError) {
    write("broken.jsonl", "{\"note\": \"so far\"}\n\n{\"lod\": 5}\n{\"note\": \"never\"}\n");
    EXPECT_FALSE(run("broken.jsonl"));
    EXPECT_EQ(read("output"), "so far\n");
    EXPECT_EQ(read("errors"), "broken.jsonl:3: \"lod\" is not known\n");
    EXPECT_FALSE(run("missing.jsonl"));
    EXPECT_EQ(read("errors"), "missing.jsonl: cannot be read\n");
    EXPECT_FALSE(run("."));
    EXPECT_EQ(read("errors"), ".: cannot be read\n");
    EXPECT_FALSE(run(""));
    EXPECT_EQ(read("errors"), "usage: norvane-scenario FILE\n");
}

TEST_F(ScenarioProgramTest, SaysThatATranscriptIsLost) {
    write("short.jsonl", "{\"note\": \"so far\"}\n");
    EXPECT_FALSE(run("short.jsonl", "/dev/full"));
    EXPECT_EQ(read("errors"), "the transcript cannot be written\n");
}

}  // namespace
}  // namespace norvane
