#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "platform/Decimal.h"
#include "platform/PropertyDictionary.h"
#include "platform/PropertyValue.h"
#include "platform/Utf8.h"
#include "platform/UUID.h"
#include "platform/WholeNumber.h"

namespace norvane {
namespace {

constexpr auto kLowest = std::numeric_limits<std::int64_t>::min();
constexpr auto kHighest = std::numeric_limits<std::int64_t>::max();
const double kBelow = std::nextafter(-0x1p63, -INFINITY);

TEST(PropertyValue, IsTakenAsWhatItIsAndAsNothingElse) {
    const struct {
        const char* name;
        PropertyValue value;
        std::optional<bool> boolean;
        std::optional<std::int64_t> whole;
        std::optional<double> number;
    } cases[] = {{"true", true, true, {}, {}},
                 {"an unsigned one", 4'000'000'000U, {}, 4'000'000'000, 4e9},
                 {"the highest", kHighest, {}, kHighest, 0x1p63},
                 {"a double without a fraction", 40.0, {}, 40, 40},
                 {"one with a fraction", 40.5, {}, {}, 40.5},
                 {"the lowest as a double", -0x1p63, {}, kLowest, -0x1p63},
                 {"the first beyond", 0x1p63, {}, {}, 0x1p63},
                 {"the first below", kBelow, {}, {}, kBelow},
                 {"without an end", INFINITY, {}, {}, INFINITY},
                 {"a text that looks like a number", "7", {}, {}, {}},
                 {"a dictionary", PropertyDictionary{{"a", 1}}, {}, {}, {}}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.value.boolean(), c.boolean) << c.name;
        EXPECT_EQ(c.value.wholeNumber(), c.whole) << c.name;
        EXPECT_EQ(c.value.number(), c.number) << c.name;
    }
    EXPECT_EQ(PropertyValue(NAN).wholeNumber(), std::nullopt);
    EXPECT_EQ(*PropertyValue("text").text(), "text");
    EXPECT_EQ(PropertyValue(7).text(), nullptr);
    EXPECT_EQ(PropertyValue("text").dictionary(), nullptr);
    EXPECT_NE(PropertyValue(1), PropertyValue(true));
    EXPECT_NE(PropertyValue(PropertyDictionary{{"a", "b"}}), PropertyValue(PropertyDictionary{{"a", "c"}}));
}

TEST(PropertyDictionary, HoldsOneValueUnderEachName) {
    const std::string null("\0", 1);
    PropertyDictionary properties{{"a", 1}, {"b", 2}};
    properties.set("a", "other");
    properties.set(null, 3);
    properties.remove("c");
    properties.remove("b");
    EXPECT_EQ(properties, (PropertyDictionary{{"a", "other"}, {null, 3}}));
    EXPECT_EQ(*properties.find(null), PropertyValue(3));
    EXPECT_EQ(properties.find(""), nullptr);
}

TEST(WholeNumber, CutsTowardsZeroAndSaturates) {
    const struct {
        double value;
        std::int64_t want;
    } cases[] = {
        {29.0 / 100.0 * 100.0, 28}, {-7.9, -7},           {std::nextafter(0x1p63, 0), kHighest - 1023},
        {0x1p63, kHighest},         {-0x1p63, kLowest},   {kBelow, kLowest},
        {INFINITY, kHighest},       {-INFINITY, kLowest}, {NAN, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(wholeNumber(c.value), c.want) << c.value;
}

TEST(Decimal, WritesExactlySoManyPlaces) {
    const struct {
        double value;
        int places;
        const char* want;
    } cases[] = {{-0.001, 2, "-0.00"},
                 {2.5, 0, "2"},
                 {1.005, 2, "1.00"},
                 {99.995, 2, "100.00"},
                 {1e21, 1, "1000000000000000000000.0"},
                 {NAN, 2, "nan"},
                 {-INFINITY, 2, "-inf"}};
    for (const auto& c : cases)
        EXPECT_EQ(decimal(c.value, c.places), c.want) << c.value;
    EXPECT_EQ(decimal(std::numeric_limits<double>::max(), 17).size(), 309U + 1 + 17);
}

TEST(RepairedUtf8, ReplacesWhatIsNoCharacterAndNothingElse) {
    const std::string r = "\xEF\xBF\xBD";
    const std::string ofEveryLength = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80";
    const std::string null("a\0b", 3);
    const struct {
        const char* name;
        std::string bytes, want;
    } cases[] = {{"characters of every length", ofEveryLength, ofEveryLength},
                 {"a NUL is a character", null, null},
                 {"a lone continuation", "a\x80z", "a" + r + "z"},
                 {"cut off at the end", "a\xE2\x82", "a" + r},
                 {"cut off by a letter", "\xF0\x9F\x98z", r + "z"},
                 {"overlong", "\xC0\xAF", r + r},
                 {"overlong of three", "\xE0\x80\xAF", r + r + r},
                 {"a surrogate", "\xED\xA0\x80", r + r + r},
                 {"beyond the last", "\xF4\x90\x80\x80", r + r + r + r},
                 {"never valid", "\xFF\xFE", r + r}};
    for (const auto& c : cases)
        EXPECT_EQ(repairedUtf8(c.bytes), c.want) << c.name;
}

TEST(UUID, IsWrittenInUpperCaseInFiveGroups) {
    EXPECT_EQ(
        uuidString({{0xE6, 0x21, 0xE1, 0xF8, 0xC3, 0x6C, 0x49, 0x5A, 0x93, 0xFC, 0x0C, 0x24, 0x7A, 0x3E}}),
        "E621E1F8-C36C-495A-93FC-0C247A3E0000");
}

}  // namespace
}  // namespace norvane
