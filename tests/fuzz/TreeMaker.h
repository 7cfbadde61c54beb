#pragma once

#include <optional>

#include "Choices.h"
#include "TreePlan.h"
#include "views/Animation.h"

namespace norvane {

// Makes up trees, and changes to them, by choices.
class TreeMaker {
 public:
    // The choices outlive the maker.
    explicit TreeMaker(Choices& choices) : choices_(choices) {}

    TreePlan tree();
    // Anything about the tree: a number, a member more or less, another thing in a thing's place.
    void change(TreePlan& tree);
    // None for a change that is there at once.
    std::optional<Animation> animation();

 private:
    TreePlan tree(int depth, int& most);
    TreePlan::Kind kind(int depth);
    void changeMembers(TreePlan& list);

    Choices& choices_;
};

}  // namespace norvane
