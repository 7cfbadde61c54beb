#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"
#include "views/HostedView.h"

namespace norvane {

// A screen on a machine in virtual time, as the tests of what is on it need it.
class ShownElement {
 public:
    // What `body` looks at outlives it.
    ShownElement(Size size, std::function<Element()> body)
        : size_(size), view(std::move(body), machine.platform()) {}

    void appear() {
        view.appear();
        settle();
    }
    // Whatever follows at this moment.
    void settle() {
        for (int turn = 0; turn < 4; ++turn) {
            picture();
            machine.settle();
        }
        picture();
    }
    void advance(std::chrono::nanoseconds time) {
        machine.advance(time);
        settle();
    }
    // Changes what the body looks at.
    void change(const std::function<void()>& changes) {
        view.change(changes);
        settle();
    }

    DisplayList picture() { return view.displayList(size_, machine.time.monotonic()); }

    // All commands of that kind in the picture, back to front, those in groups with them.
    template <typename Command>
    std::vector<Command> all() {
        std::vector<Command> found;
        collect(picture().items, found);
        return found;
    }

    void click(Point at) {
        view.pointer({PointerEvent::Kind::press, at});
        view.pointer({PointerEvent::Kind::release, at});
        settle();
    }
    bool key(KeyEvent::Key key) {
        const bool meant = view.key({key});
        settle();
        return meant;
    }
    AccessibleNode node(std::string_view name) {
        const AccessibleNode tree = view.accessibleTree();
        return find(tree, name).value_or(AccessibleNode{});
    }
    bool perform(std::string_view name, std::string_view action) {
        const bool isDone = view.perform(node(name).key, action);
        settle();
        return isDone;
    }

    ScriptedMachine machine;

 private:
    template <typename Command>
    static void collect(const std::vector<DisplayItem>& items, std::vector<Command>& found) {
        for (const DisplayItem* item : flatItems(items)) {
            if (const auto* command = std::get_if<Command>(&item->command)) found.push_back(*command);
            if (const auto* group = std::get_if<DrawGroup>(&item->command)) collect(group->items, found);
        }
    }
    static std::optional<AccessibleNode> find(const AccessibleNode& node, std::string_view name) {
        if (node.name == name) return node;
        for (const AccessibleNode& child : node.children) {
            if (const auto found = find(child, name)) return found;
        }
        return std::nullopt;
    }

    Size size_;

 public:
    HostedView view;
};

}  // namespace norvane
