#include "views/StackLayout.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace norvane {

std::vector<double> sharedOut(double room, std::span<const LengthRange> members) {
    std::vector<std::size_t> order(members.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto flexibility = [&](std::size_t i) { return members[i].most - members[i].least; };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return flexibility(a) < flexibility(b); });

    std::vector<double> lengths(members.size());
    std::size_t waiting = members.size();
    for (const std::size_t i : order) {
        const double offered = std::max(room, 0.0) / static_cast<double>(waiting--);
        lengths[i] = std::max(members[i].least, std::min(offered, members[i].most));
        room -= lengths[i];
    }
    return lengths;
}

}  // namespace norvane
