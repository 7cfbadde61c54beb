#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "views/Element.h"

namespace norvane {

// A made-up tree of elements as a plain value, which can be changed in any place and made into elements again
// and again. What the choices and numbers mean depends on the kind; each value of them means something.
struct TreePlan {
    enum class Kind {
        // Without anything inside.
        text,
        symbol,
        image,
        shape,
        spacer,
        divider,
        prominentButton,
        none,
        // With any number of members.
        row,
        column,
        depth,
        grid,
        // Around one member; `background` and `overlay` have a second one.
        scroll,
        button,
        component,
        padding,
        frame,
        background,
        overlay,
        opacity,
        offset,
        scaled,
        clipped,
        condensed,
        hover,
        appear,
        change,
        told,
        hidden,
    };

    Kind kind = Kind::text;
    std::array<unsigned, 6> choices{};
    // Usually from 0 to 1.
    std::array<double, 8> numbers{};
    std::string words;
    std::optional<std::string> id;
    unsigned transition = 0;
    double priority = 0;
    std::vector<TreePlan> members;

    bool isPlain() const { return kind <= Kind::none; }
    bool isList() const { return kind >= Kind::row && kind <= Kind::grid; }

    // Itself and all that is inside of it.
    std::size_t count() const;
    // The one of that number, counted from 0, which is itself.
    TreePlan& at(std::size_t number);
};

// Is told that something has happened to an element, with a number that the element's plan has for it.
using TreeHandler = std::function<void(unsigned what)>;

Element elementOf(const TreePlan& plan, const TreeHandler& handler);

}  // namespace norvane
