#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "platform/SurfaceContent.h"

namespace norvane {

// A whole panel on a machine in virtual time, with what its user does to it. Machine and content outlive it.
class ShownPanel {
 public:
    // Without a size, as large as it likes.
    ShownPanel(ScriptedMachine& machine, SurfaceContent& content, std::optional<Size> size = {})
        : machine_(machine), content_(content), size_(size) {}

    void appear() {
        content_.appear();
        settle();
    }
    // Whatever follows at this moment.
    void settle() {
        for (int turn = 0; turn < 4; ++turn) {
            picture();
            machine_.settle();
        }
        picture();
    }
    void advance(std::chrono::nanoseconds time) {
        machine_.advance(time);
        settle();
    }
    DisplayList picture() { return content_.displayList(size(), machine_.time.monotonic()); }
    Size size() { return size_ ? *size_ : content_.fittingSize({2000, 2000}); }

    // All that is told, in order, groups and what they hold.
    std::vector<AccessibleNode> nodes() {
        std::vector<AccessibleNode> all;
        collect(content_.accessibleTree(), all);
        return all;
    }
    // The same by name and value: "Wired: 1.25 GB"; "*Stats" is on or chosen.
    std::vector<std::string> told() {
        std::vector<std::string> all;
        for (const AccessibleNode& node : nodes()) {
            if (node.name.empty()) continue;
            const char* const mark = node.isOn == true ? "*" : "";
            all.push_back(mark + node.name + (node.value.empty() ? "" : ": " + node.value));
        }
        return all;
    }
    // The one of that name; of a group's members the first. An empty one where there is none.
    AccessibleNode node(std::string_view name, std::optional<AccessibleRole> role = {}) {
        for (const AccessibleNode& node : nodes())
            if (node.name == name && node.role == role.value_or(node.role)) return node;
        return {};
    }
    void click(Point at) {
        content_.pointer({PointerEvent::Kind::press, at});
        content_.pointer({PointerEvent::Kind::release, at});
        settle();
    }
    void click(const AccessibleNode& node) { click({node.frame.midX(), node.frame.midY()}); }
    void perform(const AccessibleNode& node, std::string_view action) {
        EXPECT_TRUE(content_.perform(node.key, action)) << node.name;
        settle();
    }

 private:
    static void collect(const AccessibleNode& node, std::vector<AccessibleNode>& all) {
        for (const AccessibleNode& child : node.children) {
            all.push_back(child);
            collect(child, all);
        }
    }

    ScriptedMachine& machine_;
    SurfaceContent& content_;
    std::optional<Size> size_;
};

}  // namespace norvane
