#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "shell/MenuBarStatsText.h"
#include "shell/PassthroughHostingView.h"

namespace norvane {
namespace {

TEST(MenuBarStatsText, ReadsAsTheLabelShowsIt) {
    for (const auto& [percent, want] : {std::pair{0.0, "0%"}, {0.5, "0%"}, {1.5, "2%"}, {99.6, "100%"}})
        EXPECT_EQ(menuBarCPUText(percent), want);
    struct RAM {
        double used, total;
        const char* want;
    };
    for (const RAM& c : {RAM{0, 1, "0.0G"},
                         {9.94, 16, "9.9G"},
                         {9.96, 16, "10.0G"},
                         {10, 16, "10G"},
                         {512, 1024, "0.5T"},
                         {512, 1023.9, "512G"},
                         {3, 4096, "0.0T"},
                         {15.5, 32, "16G"}}) {
        EXPECT_EQ(menuBarRAMText(c.used, c.total), c.want) << c.used << " of " << c.total;
    }
}

TEST(PassthroughHostingView, ShowsTwoColumnsThatFitTheItemWhateverTheDigitsAndNeverTakesThePointer) {
    ScriptedMachine machine;
    MenuBarStatsModel model;
    PassthroughHostingView view(model, machine.platform());
    EXPECT_NE(printed(view.displayList({54, 22}, {})).find("\"0.0G\""), std::string::npos);
    model.cpuPercent.set(100);
    model.ramUsedGB.set(9.99);
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
        EXPECT_EQ(view.accessibleTree().children.size(), 2U);
    }
    view.pointer({PointerEvent::Kind::press, {10, 10}});
    view.pointer({PointerEvent::Kind::release, {10, 10}});
    EXPECT_FALSE(view.key({KeyEvent::Key::space}));
    int told = 0;
    view.setChangeHandler([&] { ++told; });
    model.cpuPercent.set(12);
    EXPECT_EQ(told, 1);
    view.displayList({54, 22}, {});
    EXPECT_EQ(view.accessibleTree().children.at(0).value, "12%");
}

}  // namespace
}  // namespace norvane
