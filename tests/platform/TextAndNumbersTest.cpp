#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/Decimal.h"
#include "platform/Utf8.h"
#include "platform/WholeNumber.h"

namespace norvane {
namespace {

TEST(WholeNumber, CutsTowardsZeroAndSaturates) {
    constexpr auto kLowest = std::numeric_limits<std::int64_t>::min();
    constexpr auto kHighest = std::numeric_limits<std::int64_t>::max();
    struct Case {
        double value;
        std::int64_t want;
    };
    for (const Case& c : {Case{0, 0},
                          {29.0 / 100.0 * 100.0, 28},
                          {-7.9, -7},
                          {9007199254740993.0, 9007199254740992},
                          {std::nextafter(0x1p63, 0), 9223372036854774784},
                          {0x1p63, kHighest},
                          {-0x1p63, kLowest},
                          {INFINITY, kHighest},
                          {-INFINITY, kLowest},
                          {NAN, 0}}) {
        EXPECT_EQ(wholeNumber(c.value), c.want) << c.value;
    }
}

TEST(Decimal, WritesExactlySoManyPlaces) {
    struct Case {
        double value;
        int places;
        const char* want;
    };
    for (const Case& c : {Case{-0.001, 2, "-0.00"},
                          {2.5, 0, "2"},
                          {1.005, 2, "1.00"},
                          {99.995, 2, "100.00"},
                          {1e21, 1, "1000000000000000000000.0"},
                          {NAN, 2, "nan"},
                          {-INFINITY, 2, "-inf"}}) {
        EXPECT_EQ(decimal(c.value, c.places), c.want) << c.value;
    }
    EXPECT_EQ(decimal(std::numeric_limits<double>::max(), 17).size(), 309U + 1 + 17);
}

TEST(RepairedUtf8, ReplacesWhatIsNoCharacterAndNothingElse) {
    struct Case {
        const char* name;
        std::string bytes, want;
    };
    const std::string r = "\xEF\xBF\xBD";
    for (const Case& c : {Case{"plain", "plain", "plain"},
                          {"characters of every length", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                           "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"},
                          {"a lone continuation", "a\x80z", "a" + r + "z"},
                          {"cut off at the end", "a\xE2\x82", "a" + r},
                          {"cut off by a letter", "\xF0\x9F\x98z", r + "z"},
                          {"overlong", "\xC0\xAF", r + r},
                          {"overlong of three", "\xE0\x80\xAF", r + r + r},
                          {"a surrogate", "\xED\xA0\x80", r + r + r},
                          {"beyond the last", "\xF4\x90\x80\x80", r + r + r + r},
                          {"never valid", "\xFF\xFE", r + r},
                          {"a NUL is a character", std::string("a\0b", 3), std::string("a\0b", 3)}}) {
        EXPECT_EQ(repairedUtf8(c.bytes), c.want) << c.name;
    }
}

}  // namespace
}  // namespace norvane
