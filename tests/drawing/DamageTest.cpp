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

// A picture that knows what was painted where and in which order: each item mixes itself into the points that
// it covers, so that any point painted wrongly, twice or too early has another value.
class Painting {
 public:
    Painting() : points_(kWidth * kHeight, 0) {}

    // Clears the area and paints the part of the list that lies in it.
    void paint(const DisplayList& list, const Rect& area) {
        for (std::size_t y = 0; y < kHeight; ++y) {
            for (std::size_t x = 0; x < kWidth; ++x) {
                const Point middle{static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5};
                if (area.contains(middle)) points_[y * kWidth + x] = mixed(list.items, middle, 1);
            }
        }
    }

    bool operator==(const Painting&) const = default;

 private:
    static std::uint64_t mixed(const std::vector<DisplayItem>& items, Point point, std::uint64_t value) {
        for (const DisplayItem& item : items) {
            if (!item.bounds.contains(point)) continue;
            if (const auto* group = std::get_if<DrawGroup>(&item.command)) {
                if (group->clip && !group->clip->rect.contains(point)) continue;
                const std::uint64_t inside = mixed(group->items, point, 1);
                // Where nothing of it is, a group leaves what is behind it alone.
                if (inside != 1)
                    value = value * 37 + inside * static_cast<std::uint64_t>(group->opacity * 100);
            } else {
                const Color color = std::get<FillShape>(item.command).fill.from;
                value = value * 1'000'003 + static_cast<std::uint64_t>(color.red * 255) + 1;
            }
        }
        return value;
    }

    std::vector<std::uint64_t> points_;
};

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

// Some of ten items in any order, where their edges may lie between points and outside of the frame. Some are
// groups of a few more.
std::vector<DisplayItem> randomItems(std::mt19937& random, int depth = 0) {
    const auto upTo = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    std::vector<DisplayItem> items;
    for (int i = 0; i < (depth == 0 ? 10 : 4); ++i) {
        if (upTo(3) == 0) continue;
        const Rect bounds{{upTo(160) / 4.0 - 4, upTo(120) / 4.0 - 4}, {upTo(60) / 4.0, upTo(40) / 4.0}};
        const std::string key = "item " + std::to_string(i);
        if (i % 4 == 3 && depth < 2) {
            const auto clip = upTo(1) == 0 ? std::optional(bounds) : std::nullopt;
            DisplayItem made = group(key, upTo(1) == 0 ? 1 : 0.5, clip, randomItems(random, depth + 1));
            if (!made.bounds.isEmpty()) items.push_back(std::move(made));
        } else {
            items.push_back(item(key, bounds, upTo(2)));
        }
    }
    std::shuffle(items.begin(), items.end(), random);
    return items;
}

// The next frame of a list: most items stay, a few change, go, come or change their places.
DisplayList laterThan(const DisplayList& list, std::mt19937& random) {
    const auto upTo = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    DisplayList later = list;
    for (const DisplayItem& other : randomItems(random)) {
        if (upTo(3) != 0) continue;
        const auto old =
            std::find_if(later.items.begin(), later.items.end(),
                         [&](const DisplayItem& candidate) { return candidate.key == other.key; });
        if (old == later.items.end()) {
            later.items.push_back(other);
        } else if (upTo(2) == 0) {
            later.items.erase(old);
        } else {
            *old = other;
        }
    }
    if (upTo(2) == 0) std::shuffle(later.items.begin(), later.items.end(), random);
    return later;
}

TEST(Damage, IsAllThatHasToBePaintedAgain) {
    const Rect everything{{}, {kWidth, kHeight}};
    std::mt19937 random(20240229);
    DisplayList before = listOf(randomItems(random));
    for (int frame = 0; frame < 2000; ++frame) {
        const DisplayList after = frame % 50 == 0 ? listOf(randomItems(random)) : laterThan(before, random);
        const std::vector<Rect> damage = damageBetween(before, after);
        Painting repaired;
        repaired.paint(before, everything);
        for (const Rect& rect : damage)
            repaired.paint(after, rect);
        Painting painted;
        painted.paint(after, everything);
        ASSERT_TRUE(repaired == painted) << "frame " << frame << ", before:\n"
                                         << printed(before) << "after:\n"
                                         << printed(after);
        for (std::size_t i = 0; i < damage.size(); ++i) {
            ASSERT_EQ(damage[i].intersection(everything), damage[i]) << "outside of the frame " << frame;
            for (std::size_t j = 0; j < i; ++j)
                ASSERT_FALSE(damage[i].intersects(damage[j])) << "frame " << frame;
        }
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
    const DisplayItem brightRight = item("right", right.bounds, 9);
    const DisplayItem brightWide = item("wide", wide.bounds, 9);
    const DisplayItem outside = item("x", {{90, 0}, {9, 9}});
    const Rect window{{5, 8}, {10, 10}};
    const auto one = [](double opacity, std::optional<Rect> clip, Items items) {
        return Items{group("group", opacity, clip, std::move(items))};
    };
    struct Case {
        const char* name;
        Items before, after;
        std::vector<Rect> damage;
    };
    const std::vector<Case> cases = {
        {"nothing changed", {left, right}, {left, right}, {}},
        {"another colour", {left, right}, {left, brightRight}, {right.bounds}},
        {"one came in front of the others", {left, right}, {far, left, right}, {far.bounds}},
        {"one went", {left, far, right}, {left, right}, {far.bounds}},
        {"one moved away", {left}, {item("left", far.bounds)}, {left.bounds, far.bounds}},
        {"one moved a little", {left}, {item("left", {{2, 1}, {4, 4}})}, {{{0, 0}, {6, 5}}}},
        {"one outside of the frame came", {left}, {left, outside}, {}},
        // The last touches a and b alone; the rectangle around the three reaches d as well.
        {"only the whole overlaps",
         {},
         {item("a", {{0, 0}, {4, 4}}), item("b", {{8, 8}, {4, 4}}), item("d", {{9, 0}, {2, 2}}),
          item("c", {{3, 3}, {6, 6}})},
         {{{0, 0}, {12, 12}}}},
        {"in a group, the same", one(0.5, {}, {left, right}), one(0.5, {}, {left, right}), {}},
        {"another colour", one(0.5, {}, {left, right}), one(0.5, {}, {left, brightRight}), {right.bounds}},
        {"one came", one(1, {}, {left}), one(1, {}, {left, right}), {right.bounds}},
        {"another order", one(1, {}, {left, right, wide}), one(1, {}, {right, left, wide}), {left.bounds}},
        {"another opacity", one(0.5, {}, {left, right}), one(0.6, {}, {left, right}), {{{0, 0}, {14, 4}}}},
        {"moved with everything in it",
         one(0.5, {}, {left}),
         one(0.5, {}, {item("left", far.bounds)}),
         {left.bounds, far.bounds}},
        {"cut by the clip", one(1, window, {wide}), one(1, window, {brightWide}), {{{5, 10}, {10, 4}}}},
        {"hidden by the clip", one(1, window, {wide, left}), one(1, window, {wide, brightLeft}), {}},
        {"another clip",
         one(1, window, {wide}),
         one(1, Rect{{5, 8}, {12, 10}}, {wide}),
         {{{5, 10}, {12, 4}}}},
        {"a group where there was none", {wide}, {group("wide", 1, {}, {wide})}, {wide.bounds}},
        {"deep inside",
         one(1, {}, {group("g", 1, window, {wide, left})}),
         one(1, {}, {group("g", 1, window, {brightWide, left})}),
         {{{5, 10}, {10, 4}}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(damageBetween(listOf(c.before), listOf(c.after)), c.damage) << c.name;
}

TEST(Damage, IsEverythingAfterAChangeOfSize) {
    const DisplayItem same = item("same", {{0, 0}, {4, 4}});
    const DisplayList small{{10, 10}, {same}};
    const DisplayList large{{20, 10}, {same}};
    EXPECT_EQ(damageBetween(small, large), (std::vector<Rect>{{{0, 0}, {20, 10}}}));
    EXPECT_EQ(damageBetween(large, DisplayList{}), std::vector<Rect>{});
}

}  // namespace
}  // namespace norvane
