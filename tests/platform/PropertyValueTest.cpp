#include "platform/PropertyValue.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "platform/PropertyDictionary.h"

namespace norvane {
namespace {

TEST(PropertyValue, IsTakenAsWhatItIsAndAsNothingElse) {
    constexpr auto kLowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto kHighest = std::numeric_limits<std::int64_t>::max();
    struct Case {
        const char* name;
        PropertyValue value;
        std::optional<bool> boolean;
        std::optional<std::int64_t> whole;
        std::optional<double> number;
    };
    for (const Case& c : {
             Case{"true", true, true, {}, {}},
             Case{"false", false, false, {}, {}},
             Case{"an unsigned one", 4'000'000'000U, {}, 4'000'000'000, 4e9},
             Case{"the highest", kHighest, {}, kHighest, 0x1p63},
             Case{"a double without a fraction", 40.0, {}, 40, 40},
             Case{"one with a fraction", 40.5, {}, {}, 40.5},
             Case{"the lowest as a double", -0x1p63, {}, kLowest, -0x1p63},
             Case{"the first beyond", 0x1p63, {}, {}, 0x1p63},
             Case{"the first below",
                  std::nextafter(-0x1p63, -INFINITY),
                  {},
                  {},
                  std::nextafter(-0x1p63, -INFINITY)},
             Case{"without an end", INFINITY, {}, {}, INFINITY},
             Case{"a text that looks like a number", "7", {}, {}, {}},
             Case{"a dictionary", PropertyDictionary{{"a", 1}}, {}, {}, {}},
         }) {
        EXPECT_EQ(c.value.boolean(), c.boolean) << c.name;
        EXPECT_EQ(c.value.wholeNumber(), c.whole) << c.name;
        EXPECT_EQ(c.value.number(), c.number) << c.name;
    }
    EXPECT_EQ(PropertyValue(NAN).wholeNumber(), std::nullopt);
    EXPECT_TRUE(std::isnan(PropertyValue(NAN).number().value_or(0)));

    EXPECT_EQ(*PropertyValue("text").text(), "text");
    EXPECT_EQ(PropertyValue(7).text(), nullptr);
    EXPECT_EQ(PropertyValue("text").dictionary(), nullptr);
    EXPECT_EQ(*PropertyValue(PropertyDictionary{{"a", 1}}).dictionary(), (PropertyDictionary{{"a", 1}}));
}

TEST(PropertyValue, EqualsByTypeAndContentAndDictionariesByWhatIsInThem) {
    EXPECT_EQ(PropertyValue(PropertyDictionary{{"a", "b"}}), PropertyValue(PropertyDictionary{{"a", "b"}}));
    EXPECT_NE(PropertyValue(PropertyDictionary{{"a", "b"}}), PropertyValue(PropertyDictionary{{"a", "c"}}));
    EXPECT_NE(PropertyValue(PropertyDictionary()), PropertyValue("a"));
    EXPECT_NE(PropertyValue(1), PropertyValue(true));
    EXPECT_NE(PropertyValue(1), PropertyValue(1.0));
}

TEST(PropertyDictionary, HoldsOneValueUnderEachName) {
    PropertyDictionary properties{{"a", 1}, {"b", 2}};
    properties.set("a", "other");
    properties.set(std::string("\0", 1), 3);
    properties.remove("c");
    EXPECT_EQ(properties.size(), 3U);
    EXPECT_EQ(*properties.find("a"), PropertyValue("other"));
    EXPECT_EQ(*properties.find(std::string("\0", 1)), PropertyValue(3));
    EXPECT_EQ(properties.find(""), nullptr);
    properties.remove("a");
    EXPECT_EQ(properties.find("a"), nullptr);
    EXPECT_EQ(*properties.find("b"), PropertyValue(2));
}

}  // namespace
}  // namespace norvane
