#include "views/StackLayout.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>

namespace norvane {
namespace {

// A member may ask for infinite lengths; the difference of two of them is no number.
double flexibility(const LengthRange& range) {
    return range.most > range.least ? range.most - range.least : 0;
}

// What is no number is equal to nothing, not to itself either.
double priorityOf(const LengthRange& range) {
    return std::isnan(range.priority) ? 0 : range.priority;
}

}  // namespace

std::vector<double> sharedOut(double room, std::span<const LengthRange> members) {
    std::vector<std::size_t> order(members.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        const double first = priorityOf(members[a]);
        const double second = priorityOf(members[b]);
        if (first != second) return first > second;
        return flexibility(members[a]) < flexibility(members[b]);
    });

    // What those whose turn has not come need at least is not given away.
    double reserved = 0;
    for (const LengthRange& member : members)
        reserved += member.least;

    std::vector<double> lengths(members.size());
    for (std::size_t begin = 0; begin < order.size();) {
        const double priority = priorityOf(members[order[begin]]);
        std::size_t end = begin;
        for (; end < order.size() && priorityOf(members[order[end]]) == priority; ++end)
            reserved -= members[order[end]].least;
        double free = room - reserved;
        for (std::size_t i = begin; i < end; ++i) {
            const LengthRange& member = members[order[i]];
            const double offered = std::max(free, 0.0) / static_cast<double>(end - i);
            const double length = std::max(member.least, std::min(offered, member.most));
            lengths[order[i]] = length;
            free -= length;
            room -= length;
        }
        begin = end;
    }
    return lengths;
}

}  // namespace norvane
