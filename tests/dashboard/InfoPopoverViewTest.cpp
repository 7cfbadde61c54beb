#include "dashboard/InfoPopoverView.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dashboard/FeedbackAddress.h"
#include "ShownPanel.h"

namespace norvane {
namespace {

using Role = AccessibleRole;

TEST(InfoPopoverView, TellsTheVersionOfTheBundleWhereItIsATextAndItsLinkBeginsALetter) {
    const std::string letter = "mailto:" + std::string(kFeedbackAddress);
    using Version = std::optional<PropertyValue>;
    for (const auto& [version, told] : {std::pair<Version, const char*>{{}, "Version 1.0"},
                                        {"2.3.1", "Version 2.3.1"},
                                        {4, "Version 1.0"}}) {
        ScriptedMachine machine;
        if (version) machine.mainBundle.information.set("CFBundleShortVersionString", *version);
        InfoPopoverView view(machine.platform());
        ShownPanel panel(machine, view.content());
        panel.appear();
        const AccessibleNode link = panel.node("Send Feedback", Role::link);
        const AccessibleNode text = panel.node(told, Role::text);
        EXPECT_EQ(text.name, told);
        panel.click(link);
        panel.perform(link, "press");
        EXPECT_EQ(machine.workspace.opened, (std::vector<std::string>{letter, letter}));
    }
}

}  // namespace
}  // namespace norvane
