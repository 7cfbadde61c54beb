#include "platform/linux/KernelText.h"

#include <gtest/gtest.h>

#include <limits>

namespace norvane {
namespace {

TEST(KernelText, NumbersAreWholeWordsThatFit) {
    struct Case {
        const char* text;
        std::optional<std::uint64_t> want;
    };
    for (const Case& c : {Case{"12 34", 12}, Case{"\t 7", 7},
                          Case{"18446744073709551615", std::numeric_limits<std::uint64_t>::max()},
                          Case{"18446744073709551616", {}}, Case{"-1", {}}, Case{"+1", {}}, Case{"12kB", {}},
                          Case{"", {}}, Case{" ", {}}, Case{"0x10", {}}, Case{"\xff\x01", {}}}) {
        std::string_view rest = c.text;
        EXPECT_EQ(takeNumber(rest), c.want) << c.text;
        if (!c.want) {
            EXPECT_EQ(rest, c.text) << "a word that is no number must stay";
        }
    }
}

TEST(KernelText, HundredthsAreCutOffNotRounded) {
    struct Case {
        const char* text;
        std::optional<std::uint64_t> want;
    };
    for (const Case& c : {Case{"0.00", 0}, Case{"19.99", 1999}, Case{"20", 2000}, Case{"1.5", 150},
                          Case{"12.349", 1234}, Case{"1.", {}}, Case{".5", {}}, Case{"1.x", {}},
                          Case{"nan", {}}, Case{"-1.00", {}}, Case{"", {}}, Case{"1.2.3", {}}}) {
        EXPECT_EQ(parseHundredths(c.text), c.want) << c.text;
    }
}

TEST(KernelText, BlanksAndControlBytesCollapseToOneSpace) {
    EXPECT_EQ(collapsed("  Intel(R)   Xeon(R)\tCPU \n"), "Intel(R) Xeon(R) CPU");
    EXPECT_EQ(collapsed(std::string_view("a\0\x7f\x1b b\xc3\xa9", 8)), "a b\xc3\xa9");
    EXPECT_EQ(collapsed(" \t\n"), "");
}

TEST(KernelText, LinesEndWithOrWithoutNewline) {
    std::string_view text = "one\n\nlast";
    EXPECT_EQ(takeLine(text), "one");
    EXPECT_EQ(takeLine(text), "");
    EXPECT_EQ(takeLine(text), "last");
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(takeLine(text), "");
}

TEST(KernelText, NamesEndInANumberThatFits) {
    EXPECT_EQ(numberAfter("cpu", "cpu12"), 12u);
    for (const char* name :
         {"cpu", "cpufreq", "cpu1x", "cpu-1", "cpu70000", "cpu99999999999999999999", "xcpu1"})
        EXPECT_EQ(numberAfter("cpu", name), std::nullopt) << name;
}

}  // namespace
}  // namespace norvane
