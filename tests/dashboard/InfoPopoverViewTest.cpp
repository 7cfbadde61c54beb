#include "dashboard/InfoPopoverView.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "dashboard/FeedbackAddress.h"
#include "ShownPanel.h"

namespace norvane {
namespace {

using Role = AccessibleRole;

class InfoPopoverViewTest : public testing::Test {
 protected:
    ScriptedMachine machine_;
    InfoPopoverView view_{machine_.platform()};
    ShownPanel panel_{machine_, view_.content()};
};

TEST_F(InfoPopoverViewTest, TellsTheVersionOfTheBundleWhereItIsAText) {
    struct Case {
        std::optional<PropertyValue> value;
        const char* told;
    };
    for (const Case& c :
         {Case{std::nullopt, "Version 1.0"}, {"2.3.1", "Version 2.3.1"}, {4, "Version 1.0"}}) {
        machine_.mainBundle.information = {};
        if (c.value) machine_.mainBundle.information.set("CFBundleShortVersionString", *c.value);
        InfoPopoverView view(machine_.platform());
        ShownPanel panel(machine_, view.content());
        panel.appear();
        EXPECT_EQ(panel.node(c.told, Role::text).name, c.told);
    }
}

TEST_F(InfoPopoverViewTest, TheLinkBeginsALetterByPointerAndByAction) {
    panel_.appear();
    const AccessibleNode link = panel_.node("Send Feedback", Role::link);
    const AccessibleNode version = panel_.node("Version 1.0", Role::text);
    EXPECT_GE(link.frame.minX(), version.frame.maxX()) << "to the right";
    EXPECT_EQ(link.frame.minY(), version.frame.minY()) << "by their tops";
    panel_.click(link);
    panel_.perform(link, "press");
    const std::string url = "mailto:" + std::string(kFeedbackAddress);
    EXPECT_EQ(machine_.workspace.opened, (std::vector<std::string>{url, url}));
}

}  // namespace
}  // namespace norvane
