#include "TreePlan.h"

#include <algorithm>

namespace norvane {
namespace {

constexpr int kDeepest = 40;
constexpr int kListsDeep = 2;
constexpr int kMostThings = 120;
constexpr std::size_t kMostMembers = 8;
// Some are the same for several things, and one looks like a part of another.
constexpr std::array kIds{"a", "a.1", "b", "/a/b", "0", "~0~a", ""};

unsigned sizeOf(const auto& things) {
    return static_cast<unsigned>(things.size());
}

// Lists at the root, and then as many things with nothing inside as others: neither a mere chain nor a tree
// whose first branch takes all that there may be.
unsigned madeKind(Choices& choices, int depth) {
    if (depth < kListsDeep) return TreePlan::kLists + choices.below(TreePlan::kAround - TreePlan::kLists);
    return choices.isSo() ? TreePlan::kLists + choices.below(TreePlan::kEnd - TreePlan::kLists)
                          : choices.below(TreePlan::kLists);
}

TreePlan madePlan(Choices& choices, int depth, int& most) {
    --most;
    const bool isLast = most <= 0 || depth >= kDeepest || choices.isOver();
    TreePlan plan;
    plan.kind = isLast ? TreePlan::kPlain : madeKind(choices, depth);
    for (unsigned& choice : plan.choices)
        choice = choices.below(64);
    for (double& number : plan.numbers)
        number = choices.fraction();
    plan.words = choices.words();
    if (choices.below(5) == 1) plan.id = kIds[choices.below(kIds.size())];
    plan.transition = choices.below(7);
    if (choices.below(6) == 1) plan.priority = choices.fraction();
    if (plan.kind < TreePlan::kLists) return plan;
    const bool isPair = plan.kind >= TreePlan::kPairs && plan.kind < TreePlan::kAroundToo;
    const unsigned members = plan.isList() ? 2 + choices.below(4) : isPair ? 2 : 1;
    for (unsigned i = 0; i < members && most > 0; ++i)
        plan.members.push_back(madePlan(choices, depth + 1, most));
    return plan;
}

void changeMembers(std::vector<TreePlan>& members, Choices& choices) {
    const unsigned what = choices.below(4);
    const bool isOneMore = members.empty() || (what < 2 && members.size() < kMostMembers);
    const auto place = members.begin() + choices.below(sizeOf(members) + (isOneMore ? 1 : 0));
    if (isOneMore) {
        int most = 4;
        members.insert(place, madePlan(choices, 3, most));
    } else if (what == 3 && members.size() > 1) {
        std::rotate(members.begin(), place, members.end());
    } else {
        members.erase(place);
    }
}

}  // namespace

TreePlan TreePlan::made(Choices& choices) {
    int most = kMostThings;
    return madePlan(choices, 0, most);
}

void TreePlan::change(Choices& decide) {
    const auto all = static_cast<unsigned>(count());
    const unsigned which = decide.below(all);
    TreePlan& plan = at(which);
    const unsigned what = decide.below(8);
    if (what < 2) {
        plan.numbers[decide.below(sizeOf(numbers))] = decide.fraction();
    } else if (what == 2) {
        plan.choices[decide.below(sizeOf(choices))] = decide.below(64);
    } else if (what == 3) {
        plan.words = decide.words();
    } else if (what == 4) {
        int most = std::clamp(kMostThings - static_cast<int>(all), 1, 12);
        plan = madePlan(decide, which == 0 ? 0 : 3, most);
    } else if (what == 5) {
        plan.transition = decide.below(7);
    } else {
        // Coming and going is what lists are for: the next one.
        unsigned list = which;
        while (list < which + all && !at(list % all).isList())
            ++list;
        if (list < which + all) changeMembers(at(list % all).members, decide);
    }
}

std::size_t TreePlan::count() const {
    std::size_t all = 1;
    for (const TreePlan& member : members)
        all += member.count();
    return all;
}

TreePlan& TreePlan::at(std::size_t number) {
    if (number == 0) return *this;
    --number;
    for (TreePlan& member : members) {
        const std::size_t inside = member.count();
        if (number < inside) return member.at(number);
        number -= inside;
    }
    return *this;
}

}  // namespace norvane
