#include "dashboard/CoreItem.h"

namespace norvane {

std::vector<CoreItem> coreItems(const SystemSnapshot& snapshot) {
    std::vector<CoreItem> items;
    items.reserve(snapshot.efficiencyCoreUsages.size() + snapshot.performanceCoreUsages.size());
    const auto add = [&items](double usage, Ink color) {
        const auto id = static_cast<std::int64_t>(items.size());
        items.push_back({.id = id, .usage = usage, .color = color, .index = id + 1});
    };
    for (const double usage : snapshot.efficiencyCoreUsages)
        add(usage, kEfficiencyInk);
    for (const double usage : snapshot.performanceCoreUsages)
        add(usage, kPerformanceInk);
    return items;
}

}  // namespace norvane
