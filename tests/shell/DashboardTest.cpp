#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "preferences/StoredValue.h"
#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What a user does with the pods, written as words, and what is told of it to those who do not see it.
class DashboardTest : public ShellTest {
 protected:
    void act(const std::string& word) override {
        const bool isCalm = word == "calm";
        if (isCalm || word == "trouble") {
            machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(isCalm ? 1 : 2);
        } else {
            ShellTest::act(word);
        }
        machine_.advance(2s);
    }
    // The pods that are told as expanded, with their names.
    std::string expanded() {
        std::string names;
        for (const AccessibleNode& node : panel("main").nodes())
            if (node.isExpanded == true) names += node.name;
        return names;
    }
    static std::vector<std::string> textsOf(const std::vector<DisplayItem>& items) {
        std::vector<std::string> texts;
        for (const DisplayItem* item : flatItems(items)) {
            if (const auto* text = std::get_if<DrawText>(&item->command)) texts.push_back(text->text);
            const auto* group = std::get_if<DrawGroup>(&item->command);
            if (group == nullptr) continue;
            const auto inside = textsOf(group->items);
            texts.insert(texts.end(), inside.begin(), inside.end());
        }
        return texts;
    }
};

// What stands out wins at an opening, is not remembered, and interrupts nobody.
TEST_F(DashboardTest, WhateverTheUserDoesThePodsFollowTheTable) {
    struct Case {
        const char* before;
        bool isSmart;
        const char* words;
        const char* expanded;
        const char* lastViewedPod;
    };
    for (const Case& c : {Case{"", true, "click Disk Impact", "Impact", "battery"},
                          {"", true, "click CPU", "", ""},
                          {"", true, "click RAM RAM CPU", "CPU", "cpu"},
                          {"", true, "click CPU click click", "CPU", ""},
                          {"", true, "click RAM RAM click click", "RAM", "memory"},
                          {"", true, "click Disk trouble", "Disk", "storage"},
                          {"", true, "click Disk trouble click click", "RAM", "storage"},
                          {"", true, "click Disk trouble click click Impact trouble", "Impact", "battery"},
                          {"", true, "click Disk trouble click click calm click click", "Disk", "storage"},
                          {"", true, "click Disk Pin trouble click", "Disk", "storage"},
                          // Shown while it counts as visible: that is no opening.
                          {"", true, "click Disk Pin trouble Settings close-main click", "Disk", "storage"},
                          {"", true, "click Disk Pin trouble Pin click click", "RAM", "storage"},
                          {"storage", false, "click", "CPU", "storage"},
                          {"storage", false, "click trouble click click", "Disk", "storage"},
                          {"storage", false, "click Impact Impact click click", "Impact", "battery"},
                          {"Storage", false, "click click click", "CPU", "Storage"}}) {
        machine_.userDefaults.removeObjectForKey(defaultskey::kLastViewedPod);
        if (*c.before != '\0') store(defaultskey::kLastViewedPod, c.before);
        store(defaultskey::kIsSmartAutoExpandEnabled, c.isSmart);
        act("calm");
        restart();
        actAll(c.words);
        EXPECT_EQ(expanded(), c.expanded) << c.words;
        const auto stored = machine_.userDefaults.objectForKey(defaultskey::kLastViewedPod);
        EXPECT_EQ(stored ? storedText(*stored).value_or("?") : "", c.lastViewedPod) << c.words;
    }
}

TEST_F(DashboardTest, ItsTreeTellsAllThatItsPictureSays) {
    launch();
    machine_.hostPort.processors.setLoad(37);
    actAll("click CPU");
    for (const char* pod : {"CPU", "RAM", "Disk", "Impact"}) {
        act(pod);
        EXPECT_EQ(expanded(), pod);
        std::string all;
        for (const AccessibleNode& node : panel("main").nodes()) {
            all += node.name + '\n' + node.value + '\n';
            const bool isFigure = node.role == AccessibleRole::meter || node.role == AccessibleRole::image;
            if (isFigure || node.isExpanded) {
                EXPECT_FALSE(node.name.empty() || node.value.empty()) << pod << ": " << node.name;
            }
        }
        for (const std::string& text : textsOf(window("main").picture().items)) {
            const bool isTold = all.find(text) != std::string::npos;
            EXPECT_TRUE(isTold || text == "⌘Q") << pod << ": " << text;
        }
    }
}

TEST_F(DashboardTest, FramesAreMadeWhileItIsOpenAndSomethingMovesAndNeverWhileItIsClosed) {
    machine_.windowServer.runsFrames = true;
    struct Case {
        const char* words;
        double rate;
    };
    // The graph glides, the bar breathes, no panel.
    for (const Case& c : {Case{"click", 30}, Case{"click RAM", 15}, Case{"click CPU", 0}}) {
        restart();
        actAll(c.words);
        SurfaceContent& content = window("main").content();
        EXPECT_EQ(content.frameRate(), c.rate) << c.words;
        const int pictures = window("main").pictures();
        machine_.advance(2s);
        EXPECT_NEAR(window("main").pictures() - pictures, 2 * c.rate, 4) << c.words;
        act("click");
        machine_.advance(5s);
        EXPECT_EQ(content.frameRate(), 0) << c.words;
    }
}

}  // namespace
}  // namespace norvane
