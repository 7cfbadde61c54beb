#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dashboard/ShownPanel.h"
#include "preferences/StoredValue.h"
#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What a user does with the pods, written as words, and what is told of it to those who do not see it.
class DashboardTest : public ShellTest {
 protected:
    void act(const std::string& word) override {
        if (word == "click") {
            click();
            machine_.advance(2s);
        } else if (word == "trouble" || word == "calm") {
            machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level)
                .always(word == "calm" ? 1 : 2);
            machine_.advance(2s);
        } else {
            press("main", word);
            machine_.advance(1s);
        }
    }
    std::vector<AccessibleNode> nodes() {
        window("main").picture();  // the tree goes with a picture
        return ShownPanel(machine_, window("main").content()).nodes();
    }
    // The pods that are told as expanded, with their names.
    std::string expanded() {
        std::string names;
        for (const AccessibleNode& node : nodes())
            if (node.isExpanded == true) names += node.name;
        return names;
    }
    std::string lastViewedPod() {
        const auto stored = machine_.userDefaults.objectForKey(defaultskey::kLastViewedPod);
        return stored ? storedText(*stored).value_or("?") : "";
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

TEST_F(DashboardTest, WhateverTheUserDoesThePodsFollowTheTable) {
    struct Case {
        const char* words;
        const char* expanded;
        const char* lastViewedPod;
    };
    const auto expect = [this](const char* before, bool isSmart, std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            machine_.userDefaults.removeObjectForKey(defaultskey::kLastViewedPod);
            if (*before != '\0') store(defaultskey::kLastViewedPod, before);
            store(defaultskey::kIsSmartAutoExpandEnabled, isSmart);
            act("calm");
            restart();
            actAll(c.words);
            EXPECT_EQ(expanded(), c.expanded) << c.words << (isSmart ? ", smartly" : "");
            EXPECT_EQ(lastViewedPod(), c.lastViewedPod) << c.words << (isSmart ? ", smartly" : "");
        }
    };
    // What stands out wins at an opening, is not remembered, and interrupts nobody.
    expect(
        "", true,
        {Case{"click", "CPU", ""}, Case{"click Disk Impact", "Impact", "battery"}, Case{"click CPU", "", ""},
         Case{"click RAM RAM", "", "memory"}, Case{"click RAM RAM CPU", "CPU", "cpu"},
         Case{"click CPU click click", "CPU", ""}, Case{"click RAM RAM click click", "RAM", "memory"},
         Case{"click Disk click click", "Disk", "storage"}, Case{"click Disk trouble", "Disk", "storage"},
         Case{"click Disk trouble click click", "RAM", "storage"},
         Case{"click Disk trouble click click Impact trouble", "Impact", "battery"},
         Case{"click Disk trouble click click calm click click", "Disk", "storage"},
         Case{"click Pin trouble click", "CPU", ""},
         Case{"click Disk Pin trouble Pin click click", "RAM", "storage"}});
    expect("storage", false,
           {Case{"click", "CPU", "storage"}, Case{"click click click", "Disk", "storage"},
            Case{"click trouble click click", "Disk", "storage"},
            Case{"click Impact Impact click click", "Impact", "battery"}});
    expect("Storage", false, {Case{"click click click", "CPU", "Storage"}});
}

TEST_F(DashboardTest, ItsTreeTellsAllThatItsPictureSays) {
    launch();
    machine_.hostPort.processors.setLoad(37);
    actAll("click click click");
    for (const char* pod : {"CPU", "RAM", "Disk", "Impact"}) {
        if (expanded() != pod) act(pod);
        std::string all;
        std::string pods;
        for (const AccessibleNode& node : nodes()) {
            all += node.name + '\n' + node.value + '\n';
            if (node.isExpanded) pods += node.name + ' ';
            if (node.role == AccessibleRole::meter || node.role == AccessibleRole::image || node.isExpanded) {
                EXPECT_FALSE(node.name.empty() || node.value.empty())
                    << pod << ": " << node.name << node.value;
            }
        }
        EXPECT_EQ(pods, "CPU RAM Disk Impact ");
        EXPECT_EQ(expanded(), pod);
        for (const std::string& text : textsOf(window("main").picture().items)) {
            const bool isTold = all.find(text) != std::string::npos;
            EXPECT_TRUE(isTold || text == "⌘Q") << pod << ": " << text;
        }
    }
    act("CPU");
    std::string gauges;
    for (const AccessibleNode& node : nodes()) {
        if (node.role == AccessibleRole::meter) gauges += node.name + ": " + node.value + '\n';
        if (node.role != AccessibleRole::image) continue;
        EXPECT_TRUE(node.name == "CPU History" && node.value.starts_with("The last ")) << node.value;
    }
    EXPECT_EQ(gauges, "Core 1: 37 %\nCore 2: 37 %\nCore 3: 37 %\nCore 4: 37 %\n");
}

TEST_F(DashboardTest, FramesAreMadeWhileItIsOpenAndSomethingMovesAndNeverWhileItIsClosed) {
    machine_.windowServer.runsFrames = true;
    launch();
    struct Case {
        const char* name;
        const char* words;
        double rate;
    };
    for (const Case& c : {Case{"the graph glides", "click", 30},
                          {"the bar breathes", "click RAM", 15},
                          {"no panel", "click CPU", 0}}) {
        restart();
        actAll(c.words);
        SurfaceContent& content = window("main").content();
        EXPECT_EQ(content.frameRate(), c.rate) << c.name;
        const int pictures = window("main").pictures();
        machine_.advance(2s);
        EXPECT_NEAR(window("main").pictures() - pictures, 2 * c.rate, 4) << c.name;
        act("click");
        machine_.advance(5s);
        EXPECT_EQ(content.frameRate(), 0) << c.name;
    }
}

}  // namespace
}  // namespace norvane
