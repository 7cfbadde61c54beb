#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Choices.h"
#include "views/Element.h"

namespace norvane {

// Is told that something has happened to an element, with a number that the element's plan has for it.
using TreeHandler = std::function<void(unsigned what)>;

// A made-up tree of elements as a plain value, which can be changed in any place and made into elements again
// and again. What the choices and numbers mean depends on the kind; each value of them means something.
struct TreePlan {
    // Where among the kinds begin those with any number of members, those around one member, those around one
    // with another beside it, and the rest of those around one. Before are those with nothing inside.
    enum Kinds : unsigned { kPlain = 0, kLists = 8, kAround = 12, kPairs = 17, kAroundToo = 19, kEnd = 29 };

    unsigned kind = kPlain;
    std::array<unsigned, 6> choices{};
    // Usually from 0 to 1.
    std::array<double, 8> numbers{};
    std::string words;
    std::optional<std::string> id;
    unsigned transition = 0;
    double priority = 0;
    std::vector<TreePlan> members;

    static TreePlan made(Choices& choices);
    // Anything: a number, a member more or less, another thing in a thing's place.
    void change(Choices& choices);

    // Itself and all that is inside of it, and the one of a number, counted from 0, which is itself.
    std::size_t count() const;
    TreePlan& at(std::size_t number);
    bool isList() const { return kind >= kLists && kind < kAround; }

    Element element(const TreeHandler& handler) const;
};

}  // namespace norvane
