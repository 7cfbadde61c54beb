#include "drawing/Damage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>

namespace norvane {
namespace {

constexpr std::size_t kWidth = 32;
constexpr std::size_t kHeight = 24;
const Rect kEverything{{}, {kWidth, kHeight}};

// What is painted on a point: each item that covers it is mixed in, so that any painted wrongly, twice or too
// early leads to another value.
std::uint64_t mixed(const std::vector<DisplayItem>& items, Point point) {
    std::uint64_t value = 1;
    for (const DisplayItem& item : items) {
        if (!item.bounds.contains(point)) continue;
        if (const auto* group = std::get_if<DrawGroup>(&item.command)) {
            if (group->clip && !group->clip->rect.contains(point)) continue;
            const std::uint64_t inside = mixed(group->items, point);
            // Where nothing of it is, a group leaves what is behind it alone.
            if (inside != 1) value = value * 37 + inside * static_cast<std::uint64_t>(group->opacity * 100);
        } else {
            const Color color = std::get<FillShape>(item.command).fill.from;
            value = value * 1'000'003 + static_cast<std::uint64_t>(color.red * 255) + 1;
        }
    }
    return value;
}

using Painting = std::vector<std::uint64_t>;

// Clears the area and paints the part of the list that lies in it.
void paint(Painting& painting, const DisplayList& list, const Rect& area) {
    painting.resize(kWidth * kHeight);
    for (std::size_t at = 0; at < painting.size(); ++at) {
        const Point middle{static_cast<double>(at % kWidth) + 0.5, static_cast<double>(at / kWidth) + 0.5};
        if (area.contains(middle)) painting[at] = mixed(list.items, middle);
    }
}

DisplayItem item(std::string key, Rect bounds, int shade = 0) {
    return {std::move(key), bounds, FillShape{RoundedRect{bounds}, Color{shade / 255.0, 0, 0, 1}}};
}

// Its bounds are those of what is in it, within the clip, as whoever makes groups says them.
DisplayItem group(std::string key, double opacity, std::optional<Rect> clip, std::vector<DisplayItem> items) {
    Rect bounds;
    for (const DisplayItem& each : items)
        bounds = bounds.united(each.bounds);
    if (clip) bounds = bounds.intersection(*clip);
    std::optional<RoundedRect> cut;
    if (clip) cut = RoundedRect{*clip};
    return {std::move(key), bounds, DrawGroup{opacity, cut, std::move(items)}};
}

DisplayList listOf(std::vector<DisplayItem> items) {
    return {{kWidth, kHeight}, std::move(items)};
}

int upTo(int most, std::mt19937& random) {
    return static_cast<int>(random() % static_cast<unsigned>(most + 1));
}

// Some of ten items in any order, where their edges may lie between points and outside of the frame. Some are
// groups of a few more.
std::vector<DisplayItem> randomItems(std::mt19937& random, int depth = 0) {
    const auto quarters = [&](int most) { return upTo(most, random) / 4.0; };
    std::vector<DisplayItem> items;
    for (int i = 0; i < (depth == 0 ? 10 : 4); ++i) {
        if (upTo(3, random) == 0) continue;
        const Rect bounds{{quarters(160) - 4, quarters(120) - 4}, {quarters(60), quarters(40)}};
        items.push_back(item(std::to_string(i), bounds, upTo(2, random)));
        if (i % 4 != 3 || depth == 2) continue;
        const auto clip = upTo(1, random) == 0 ? std::optional(bounds) : std::nullopt;
        items.back() = group(std::to_string(i), 0.5 + quarters(2), clip, randomItems(random, depth + 1));
        if (items.back().bounds.isEmpty()) items.pop_back();
    }
    std::shuffle(items.begin(), items.end(), random);
    return items;
}

// The next frame of a list: most items stay, a few change, go, come or change their places.
DisplayList laterThan(DisplayList list, std::mt19937& random) {
    for (const DisplayItem& other : randomItems(random)) {
        if (upTo(3, random) != 0) continue;
        const auto isOther = [&](const DisplayItem& candidate) { return candidate.key == other.key; };
        if (std::erase_if(list.items, isOther) == 0 || upTo(2, random) != 0) {
            const int place = upTo(static_cast<int>(list.items.size()), random);
            list.items.insert(list.items.begin() + place, other);
        }
    }
    if (upTo(2, random) == 0) std::shuffle(list.items.begin(), list.items.end(), random);
    return list;
}

TEST(Damage, IsAllThatHasToBePaintedAgain) {
    std::mt19937 random(20240229);
    DisplayList before = listOf(randomItems(random));
    for (int frame = 0; frame < 2000; ++frame) {
        const DisplayList after = frame % 50 == 0 ? listOf(randomItems(random)) : laterThan(before, random);
        const std::vector<Rect> damage = damageBetween(before, after);
        Painting repaired, painted;
        paint(painted, after, kEverything);
        paint(repaired, before, kEverything);
        for (const Rect& rect : damage) {
            paint(repaired, after, rect);
            ASSERT_EQ(rect.intersection(kEverything), rect) << "outside of the frame " << frame;
            const auto overlaps = [&](const Rect& other) { return other.intersects(rect); };
            ASSERT_EQ(std::count_if(damage.begin(), damage.end(), overlaps), 1) << "frame " << frame;
        }
        ASSERT_TRUE(repaired == painted) << frame << ", " << printed(before) << "to\n" << printed(after);
        before = after;
    }
}

TEST(Damage, IsNoMoreThanWhatChanged) {
    using Items = std::vector<DisplayItem>;
    const DisplayItem left = item("left", {{0, 0}, {4, 4}});
    const DisplayItem right = item("right", {{10, 0}, {4, 4}});
    const DisplayItem far = item("far", {{20, 20}, {4, 4}});
    const DisplayItem wide = item("wide", {{0, 10}, {30, 4}});
    const DisplayItem brightLeft = item("left", left.bounds, 9);
    const DisplayItem brightWide = item("wide", wide.bounds, 9);
    const auto faded = [](double opacity, Items items) {
        return Items{group("group", opacity, {}, std::move(items))};
    };
    const auto clipped = [](Items items) {
        return Items{group("group", 1, Rect{{5, 8}, {10, 10}}, std::move(items))};
    };
    struct Case {
        const char* name;
        Items before, after;
        std::vector<Rect> damage;
    };
    for (const Case& c : {
             Case{"one came in front", {left, right}, {far, left, right}, {far.bounds}},
             Case{"one moved away", {left}, {item("left", far.bounds)}, {left.bounds, far.bounds}},
             Case{"one moved a little", {left}, {item("left", {{2, 1}, {4, 4}})}, {{{0, 0}, {6, 5}}}},
             // The last touches a and b alone; the rectangle around the three reaches d as well.
             Case{"only the whole overlaps",
                  {},
                  {item("a", {{0, 0}, {4, 4}}), item("b", {{8, 8}, {4, 4}}), item("d", {{9, 0}, {2, 2}}),
                   item("c", {{3, 3}, {6, 6}})},
                  {{{0, 0}, {12, 12}}}},
             Case{"in a group, one", faded(1, {left, wide}), faded(1, {brightLeft, wide}), {left.bounds}},
             Case{"another order", faded(1, {left, wide}), faded(1, {wide, left}), {left.bounds}},
             Case{"another opacity", faded(1, {left}), faded(0.6, {left}), {left.bounds}},
             Case{"cut by a clip", clipped({wide, left}), clipped({brightWide, left}), {{{5, 10}, {10, 4}}}},
             Case{"hidden by it", clipped({wide, left}), clipped({wide, brightLeft}), {}},
         })
        EXPECT_EQ(damageBetween(listOf(c.before), listOf(c.after)), c.damage) << c.name;
    const DisplayList small{{10, 10}, {left}};
    EXPECT_EQ(damageBetween(small, listOf({left})), std::vector{kEverything}) << "another size";
    EXPECT_EQ(damageBetween(small, DisplayList{}), std::vector<Rect>{});
}

}  // namespace
}  // namespace norvane
