#include <gtest/gtest.h>

#include <limits>

#include "platform/scripted/ScriptedMachine.h"
#include "shell/MenuBarStatsText.h"
#include "shell/PassthroughHostingView.h"

namespace norvane {
namespace {

TEST(MenuBarStatsText, ReadsAsTheLabelShowsIt) {
    struct CPU {
        double percent;
        const char* want;
    };
    for (const CPU& c :
         {CPU{0, "0%"}, {0.49, "0%"}, {0.5, "0%"}, {1.5, "2%"}, {42, "42%"}, {99.6, "100%"}, {100, "100%"}}) {
        EXPECT_EQ(menuBarCPUText(c.percent), c.want);
    }
    struct RAM {
        double used, total;
        const char* want;
    };
    for (const RAM& c : {RAM{0, 1, "0.0G"},
                         {9.94, 16, "9.9G"},
                         {9.96, 16, "10.0G"},
                         {10, 16, "10G"},
                         {15.5, 32, "16G"},
                         {512, 1024, "0.5T"},
                         {512, 1023.9, "512G"},
                         {3, 4096, "0.0T"},
                         {2048, 4096, "2.0T"}}) {
        EXPECT_EQ(menuBarRAMText(c.used, c.total), c.want) << c.used << " of " << c.total;
    }
}

class PassthroughHostingViewTest : public testing::Test {
 protected:
    DisplayList paint() { return view_.displayList({54, 22}, {}); }

    ScriptedMachine machine_;
    MenuBarStatsModel model_;
    PassthroughHostingView view_{model_, machine_.platform()};
};

TEST_F(PassthroughHostingViewTest, ShowsTwoColumnsThatFitTheItemWhateverTheDigits) {
    EXPECT_NE(printed(paint()).find("\"0%\""), std::string::npos);
    EXPECT_NE(printed(paint()).find("\"0.0G\""), std::string::npos);
    model_.cpuPercent.set(100);
    model_.ramUsedGB.set(9.99);
    const DisplayList picture = paint();
    const auto items = flatItems(picture.items);
    ASSERT_EQ(items.size(), 4U);
    const char* const wants[] = {"100%", "CPU", "10.0G", "RAM"};
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& text = std::get<DrawText>(items[i]->command);
        EXPECT_EQ(text.text, wants[i]);
        EXPECT_GE(text.frame.minX(), 0);
        EXPECT_LE(text.frame.minX() + text.frame.size.width * text.scaleX, 54 + 1e-9) << "nothing is cropped";
        EXPECT_LT(text.scaleX, 1);
        const Font want = i % 2 == 0 ? Font{11, FontWeight::bold, FontDesign::monospaced, true}
                                     : Font{8, FontWeight::semibold};
        EXPECT_EQ(text.style.font, want);
    }
}

TEST_F(PassthroughHostingViewTest, NeverTakesThePointerAndTellsItsValues) {
    int told = 0;
    view_.setChangeHandler([&] { ++told; });
    model_.cpuPercent.set(12);
    EXPECT_EQ(told, 1);
    paint();
    view_.pointer({PointerEvent::Kind::press, {10, 10}});
    view_.pointer({PointerEvent::Kind::release, {10, 10}});
    EXPECT_FALSE(view_.key({KeyEvent::Key::space}));
    const AccessibleNode tree = view_.accessibleTree();
    ASSERT_EQ(tree.children.size(), 2U);
    EXPECT_EQ(tree.children[0].name, "CPU");
    EXPECT_EQ(tree.children[0].value, "12%");
}

}  // namespace
}  // namespace norvane
