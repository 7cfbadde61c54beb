#include "drawing/Damage.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace norvane {
namespace {

// Adds a rectangle, joining it with every one that it overlaps, until none overlaps another.
void add(std::vector<Rect>& damage, Rect rect) {
    if (rect.isEmpty()) return;
    for (std::size_t i = 0; i < damage.size();) {
        if (!damage[i].intersects(rect)) {
            ++i;
            continue;
        }
        rect = rect.united(damage[i]);
        damage.erase(damage.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;  // the larger rectangle may reach others that were passed over
    }
    damage.push_back(rect);
}

}  // namespace

std::vector<Rect> damageBetween(const DisplayList& before, const DisplayList& after) {
    const Rect everything{{}, after.size};
    if (before.size != after.size)
        return everything.isEmpty() ? std::vector<Rect>{} : std::vector{everything};

    std::unordered_map<std::string_view, std::size_t> oldPlaces;
    oldPlaces.reserve(before.items.size());
    for (std::size_t i = 0; i < before.items.size(); ++i)
        oldPlaces.emplace(before.items[i].key, i);

    std::vector<Rect> damage;
    std::vector<bool> kept(before.items.size(), false);
    // Items that both lists have must come in the same order: one that comes earlier than its old
    // predecessors did is treated as new.
    std::size_t nextOld = 0;
    for (const DisplayItem& item : after.items) {
        const auto found = oldPlaces.find(item.key);
        const bool same =
            found != oldPlaces.end() && found->second >= nextOld && before.items[found->second] == item;
        if (same) {
            kept[found->second] = true;
            nextOld = found->second + 1;
        } else {
            add(damage, item.bounds.intersection(everything));
        }
    }
    for (std::size_t i = 0; i < before.items.size(); ++i) {
        if (!kept[i]) add(damage, before.items[i].bounds.intersection(everything));
    }
    return damage;
}

}  // namespace norvane
