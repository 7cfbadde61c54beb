#pragma once

#include <functional>
#include <limits>
#include <utility>
#include <variant>
#include <vector>

#include "ShownPanel.h"
#include "views/HostedView.h"

namespace norvane {

inline constexpr double kInfinite = std::numeric_limits<double>::infinity();
inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// A screen of a fixed size on a machine of its own in virtual time, as the tests of what is on it need it.
class ShownElement : public ShownPanel {
 public:
    // What `body` looks at outlives it.
    ShownElement(Size size, std::function<Element()> body)
        : ShownPanel(machine, view, size), view(std::move(body), machine.platform()) {}

    // Changes what the body looks at.
    void change(const std::function<void()>& changes) {
        view.change(changes);
        settle();
    }

    // All commands of that kind in the picture, back to front, those in groups with them.
    template <typename Command>
    std::vector<Command> all() {
        std::vector<Command> found;
        collect(picture().items, found);
        return found;
    }

    bool key(KeyEvent::Key key) {
        const bool meant = view.key({key});
        settle();
        return meant;
    }

    ScriptedMachine machine;
    HostedView view;

 private:
    template <typename Command>
    static void collect(const std::vector<DisplayItem>& items, std::vector<Command>& found) {
        for (const DisplayItem* item : flatItems(items)) {
            if (const auto* command = std::get_if<Command>(&item->command)) found.push_back(*command);
            if (const auto* group = std::get_if<DrawGroup>(&item->command)) collect(group->items, found);
        }
    }
};

}  // namespace norvane
