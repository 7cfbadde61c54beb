#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "shell/MenuBarStatsText.h"
#include "shell/PassthroughHostingView.h"
#include "ShellTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// What stands in the panel, and what becomes of the popovers when that changes.
class MenuBarModeTest : public ShellTest {
 protected:
    // A load lasts until the state has followed.
    void setLoad(double percent) {
        machine_.hostPort.processors.setLoad(percent);
        machine_.advance(15s);
    }
};

TEST_F(MenuBarModeTest, TheIconComesByOpacity) {
    store(defaultskey::kMenuBarIconMode, "on");
    launch();
    for (const char* want : {"", "", "", "MenuIconNormal 0.50", "MenuIconNormal 1.00"}) {
        EXPECT_EQ(icon(), want);
        machine_.advance(75ms);
    }
}

TEST_F(MenuBarModeTest, TheIconIsThatOfTheStateOfNowHoweverItCame) {
    store(defaultskey::kMenuBarIconMode, "on");
    launch();
    watchIcon(1s);
    setLoad(100);
    EXPECT_EQ(icon(), "MenuIconCritical 1.00") << "at once";
    choose(MenuBarIconMode::stats);
    EXPECT_EQ(length(), 54);
    setLoad(0);
    EXPECT_EQ(controller().lastIconName(), "MenuIconCritical") << "left alone beside the label";
    choose(MenuBarIconMode::on);
    EXPECT_EQ(length(), StatusItem::kSquareLength);
    watchIcon(300ms);
    EXPECT_EQ(icon(), "MenuIconNormal 1.00");

    choose(MenuBarIconMode::stats);
    choose(MenuBarIconMode::on);
    machine_.advance(100ms);
    choose(MenuBarIconMode::stats);
    machine_.advance(1s);
    EXPECT_EQ(length(), 54);
    EXPECT_EQ(label(), "0% 4.0G") << "it stays, whatever fade was under way";
}

TEST_F(MenuBarModeTest, AChangedModeTakesItsPopoverAwayAndBringsItBackToTheNewAnchor) {
    struct Case {
        const char* words;
        const char* atOnce;
        const char* back;
        const char* keyboard;  // in the end
    };
    for (const Case& c : {Case{"click", "", "main", "main"},
                          {"click Settings", "", "settings", "settings"},
                          {"click Pin", "main", "main", "main"},
                          {"click Pin Settings", "main", "main settings", "settings"},
                          // The suspension lets the dashboard go; info is none of those that move.
                          {"click Pin Info", "info", "info main", "main"},
                          {"click Info", "info", "info", "info"}}) {
        SCOPED_TRACE(c.words);
        machine_.windowServer.statusItemRightMargin = 600;
        store(defaultskey::kMenuBarIconMode, "stats");
        restart();
        actAll(c.words);
        choose(MenuBarIconMode::on);
        EXPECT_EQ(shown(), c.atOnce);
        machine_.advance(599ms);
        EXPECT_EQ(shown(), c.atOnce);
        machine_.advance(1ms);
        EXPECT_EQ(shown(), c.back);
        machine_.advance(120ms);
        EXPECT_EQ(keyboard(), c.keyboard);
        const ScriptedPopoverWindow& back = *machine_.windowServer.windows().back();
        const double middle = machine_.windowServer.buttonFrame()->midX();
        EXPECT_EQ(back.frame().midX() == middle, nameOf(back) != "info") << "below the new anchor";
        EXPECT_LE(back.placesShown().size(), 2U) << "in one step";
    }
}

TEST_F(MenuBarModeTest, TwoChangesInARowBringBothPopoversBack) {
    launch();
    open();
    press("main", "Settings");
    choose(MenuBarIconMode::on);
    EXPECT_EQ(shown(), "");
    machine_.advance(100ms);
    click();
    EXPECT_EQ(shown(), "main");
    choose(MenuBarIconMode::stats);
    EXPECT_EQ(shown(), "");
    machine_.advance(500ms);
    EXPECT_EQ(shown(), "settings");
    machine_.advance(100ms);
    EXPECT_EQ(shown(), "settings main");
}

TEST(MenuBarStats, TheMachinesSizeDecidesTheUnit) {
    EXPECT_EQ(menuBarCPUText(0.5), "0%");
    EXPECT_EQ(menuBarCPUText(99.6), "100%");
    EXPECT_EQ(menuBarRAMText(9.96, 16), "10.0G");
    EXPECT_EQ(menuBarRAMText(10, 16), "10G");
    EXPECT_EQ(menuBarRAMText(512, 1023.9), "512G");
    EXPECT_EQ(menuBarRAMText(3, 1024), "0.0T");
}

TEST(MenuBarStats, TheLabelFitsTheItemWhateverTheDigitsAndNeverTakesThePointer) {
    ScriptedMachine machine;
    MenuBarStatsModel model;
    PassthroughHostingView view(model, machine.platform());
    view.displayList({54, 22}, {});
    int told = 0;
    view.setChangeHandler([&] { ++told; });
    model.cpuPercent.set(100);
    model.ramUsedGB.set(9.99);
    EXPECT_GT(told, 0);
    using Texts = std::vector<std::string>;
    for (const auto& [size, want] : {std::pair{Size{54, 22}, Texts{"100%", "CPU", "10.0G", "RAM"}},
                                     {Size{16, 16}, Texts{"100%", "10.0G"}}}) {
        const DisplayList picture = view.displayList(size, {});
        Texts texts;
        for (const DisplayItem* const item : flatItems(picture.items)) {
            const auto& text = std::get<DrawText>(item->command);
            texts.push_back(text.text);
            EXPECT_GE(text.frame.minX(), -1e-9) << text.text;
            EXPECT_LE(text.frame.minX() + text.frame.size.width * text.scaleX, size.width + 1e-9)
                << text.text;
        }
        EXPECT_EQ(texts, want);
    }
    told = 0;
    model.cpuPercent.set(100.2);
    EXPECT_EQ(told, 0) << "it reads the same";
    view.pointer({PointerEvent::Kind::press, {10, 10}});
    view.pointer({PointerEvent::Kind::release, {10, 10}});
    EXPECT_FALSE(view.key({KeyEvent::Key::space}));
}

}  // namespace
}  // namespace norvane
