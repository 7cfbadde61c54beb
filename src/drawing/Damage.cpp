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

// Two groups of which only the contents differ are compared inside.
bool areOneGroup(const DrawGroup* before, const DrawGroup* after) {
    return before != nullptr && after != nullptr && before->opacity == after->opacity &&
           before->clip == after->clip;
}

class Comparison {
 public:
    explicit Comparison(std::vector<Rect>& damage) : damage_(damage) {}

    // Within `visible`, which nothing of either list goes beyond.
    void compare(const std::vector<DisplayItem>& before, const std::vector<DisplayItem>& after,
                 const Rect& visible) {
        // Most frames have the items of the last one, in the same order.
        const bool sameKeys =
            before.size() == after.size() &&
            std::equal(before.begin(), before.end(), after.begin(),
                       [](const DisplayItem& a, const DisplayItem& b) { return a.key == b.key; });
        if (sameKeys) {
            for (std::size_t i = 0; i < after.size(); ++i)
                compare(before[i], after[i], visible);
        } else {
            // Some may have been shared before and are not now, or the other way round.
            compareByKeys(flatItems(before), flatItems(after), visible);
        }
    }

 private:
    void compare(const DisplayItem& before, const DisplayItem& after, const Rect& visible) {
        const auto* sharedBefore = std::get_if<DrawShared>(&before.command);
        const auto* sharedAfter = std::get_if<DrawShared>(&after.command);
        if (sharedBefore != nullptr && sharedAfter != nullptr && sharedBefore->items && sharedAfter->items) {
            if (sharedBefore->items != sharedAfter->items)
                compare(*sharedBefore->items, *sharedAfter->items, visible);
            return;
        }
        const auto* groupBefore = std::get_if<DrawGroup>(&before.command);
        const auto* groupAfter = std::get_if<DrawGroup>(&after.command);
        if (areOneGroup(groupBefore, groupAfter)) {
            Rect inside = visible;
            if (groupAfter->clip) inside = inside.intersection(groupAfter->clip->rect);
            compare(groupBefore->items, groupAfter->items, inside);
        } else if (before != after) {
            add(damage_, before.bounds.intersection(visible));
            add(damage_, after.bounds.intersection(visible));
        }
    }

    using Items = std::vector<const DisplayItem*>;
    void compareByKeys(const Items& before, const Items& after, const Rect& visible) {
        std::unordered_map<std::string_view, std::size_t> oldPlaces;
        oldPlaces.reserve(before.size());
        for (std::size_t i = 0; i < before.size(); ++i)
            oldPlaces.emplace(before[i]->key, i);

        std::vector<bool> kept(before.size(), false);
        // Items that both lists have must come in the same order: one that comes earlier than its old
        // predecessors did is treated as new.
        std::size_t nextOld = 0;
        for (const DisplayItem* item : after) {
            const auto found = oldPlaces.find(item->key);
            if (found == oldPlaces.end() || found->second < nextOld) {
                add(damage_, item->bounds.intersection(visible));
                continue;
            }
            kept[found->second] = true;
            nextOld = found->second + 1;
            compare(*before[found->second], *item, visible);
        }
        for (std::size_t i = 0; i < before.size(); ++i) {
            if (!kept[i]) add(damage_, before[i]->bounds.intersection(visible));
        }
    }

    std::vector<Rect>& damage_;
};

}  // namespace

std::vector<Rect> damageBetween(const DisplayList& before, const DisplayList& after) {
    const Rect everything{{}, after.size};
    if (before.size != after.size)
        return everything.isEmpty() ? std::vector<Rect>{} : std::vector{everything};
    std::vector<Rect> damage;
    Comparison(damage).compare(before.items, after.items, everything);
    return damage;
}

}  // namespace norvane
