#include "TreeMaker.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace norvane {
namespace {

constexpr int kDeepest = 40;
constexpr int kListsDeep = 2;
constexpr int kMostThings = 120;
constexpr std::size_t kMostMembers = 8;
// Some are the same for several things, and one looks like a part of another.
constexpr std::array kIds{"a", "a.1", "b", "/a/b", "0", "~0~a", ""};

}  // namespace

TreePlan TreeMaker::tree() {
    int most = kMostThings;
    return tree(0, most);
}

TreePlan TreeMaker::tree(int depth, int& most) {
    --most;
    const bool isLast = most <= 0 || depth >= kDeepest || choices_.isOver();
    TreePlan plan;
    plan.kind = isLast ? TreePlan::Kind::text : kind(depth);
    for (unsigned& choice : plan.choices)
        choice = choices_.below(64);
    for (double& number : plan.numbers)
        number = choices_.fraction();
    plan.words = choices_.words();
    if (choices_.below(5) == 1) plan.id = kIds[choices_.below(kIds.size())];
    plan.transition = choices_.below(7);
    if (choices_.below(6) == 1) plan.priority = choices_.fraction();
    if (plan.isPlain()) return plan;
    const bool isPair = plan.kind == TreePlan::Kind::background || plan.kind == TreePlan::Kind::overlay;
    const unsigned members = plan.isList() ? 2 + choices_.below(4) : isPair ? 2 : 1;
    for (unsigned i = 0; i < members && most > 0; ++i)
        plan.members.push_back(tree(depth + 1, most));
    return plan;
}

// Lists at the root, and then as many things with nothing inside as others: neither a mere chain nor a tree
// whose first branch takes all that there may be.
TreePlan::Kind TreeMaker::kind(int depth) {
    const auto between = [this](TreePlan::Kind first, TreePlan::Kind last) {
        const auto begin = static_cast<unsigned>(first);
        return static_cast<TreePlan::Kind>(begin + choices_.below(static_cast<unsigned>(last) - begin + 1));
    };
    if (depth < kListsDeep) return between(TreePlan::Kind::row, TreePlan::Kind::grid);
    return choices_.isSo() ? between(TreePlan::Kind::row, TreePlan::Kind::hidden)
                           : between(TreePlan::Kind::text, TreePlan::Kind::none);
}

void TreeMaker::change(TreePlan& tree) {
    const auto number = choices_.below(static_cast<unsigned>(tree.count()));
    TreePlan& plan = tree.at(number);
    const unsigned what = choices_.below(8);
    if (what < 2) {
        plan.numbers[choices_.below(static_cast<unsigned>(plan.numbers.size()))] = choices_.fraction();
    } else if (what == 2) {
        plan.choices[choices_.below(static_cast<unsigned>(plan.choices.size()))] = choices_.below(64);
    } else if (what == 3) {
        plan.words = choices_.words();
    } else if (what == 4) {
        int most = std::max(1, std::min(12, kMostThings - static_cast<int>(tree.count())));
        plan = this->tree(number == 0 ? 0 : 3, most);
    } else if (what == 5) {
        plan.transition = choices_.below(7);
    } else {
        // Coming and going is what lists are for.
        const std::size_t all = tree.count();
        std::size_t at = number;
        while (at < number + all && !tree.at(at % all).isList())
            ++at;
        if (at < number + all) changeMembers(tree.at(at % all));
    }
}

void TreeMaker::changeMembers(TreePlan& list) {
    auto& members = list.members;
    const auto place = [&](std::size_t more) {
        return static_cast<std::ptrdiff_t>(choices_.below(static_cast<unsigned>(members.size() + more)));
    };
    const unsigned what = choices_.below(4);
    if (members.empty() || (what < 2 && members.size() < kMostMembers)) {
        int most = 4;
        const auto at = place(1);
        members.insert(members.begin() + at, tree(3, most));
    } else if (what == 3 && members.size() > 1) {
        const auto at = place(0);
        std::rotate(members.begin(), members.begin() + at, members.end());
    } else {
        const auto at = place(0);
        members.erase(members.begin() + at);
    }
}

std::optional<Animation> TreeMaker::animation() {
    const double seconds = choices_.fraction();
    const unsigned which = choices_.below(9);
    if (which < 2) return std::nullopt;
    if (which == 2) return Animation::linear(seconds);
    if (which == 3) return Animation::easeOut(seconds);
    if (which == 4) return Animation::easeInOut(seconds);
    if (which == 5) return Animation::easeInOut(seconds).foreverThereAndBack();
    if (which == 6) return Animation::linear(seconds).forever();
    return Animation::spring(seconds, choices_.fraction());
}

}  // namespace norvane
