#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/linux/DefaultsFile.h"

namespace norvane {
namespace {

using namespace std::string_literals;

TEST(DefaultsFile, ReadsOneValueOfAnyKind) {
    struct Case {
        const char* name;
        std::string written;
        std::optional<DefaultsValue> value;
    };
    const Case cases[] = {
        {"true", "true", true},
        {"false with blanks", "  false\t", false},
        {"no truth in capitals", "True", std::nullopt},
        {"a whole number", "20", 20.0},
        {"a fraction", "-0.25", -0.25},
        {"an exponent", "1e3", 1000.0},
        {"no comma", "1,5", std::nullopt},
        {"no number with a tail", "12 GB", std::nullopt},
        {"no number beyond all bounds", "1e999", std::nullopt},
        {"infinity", "inf", std::numeric_limits<double>::infinity()},
        {"a string", "\"on\"", "on"s},
        {"an empty string", "\"\"", ""s},
        {"a string of digits", "\"1\"", "1"s},
        {"short escapes", R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"s},
        {"code points", R"("\u00e9\u20AC")", "\u00e9\u20ac"s},
        {"a pair of surrogates", R"("\ud83d\ude00")", "\U0001f600"s},
        {"a NUL", R"("\u0000")", "\0"s},
        {"UTF-8 as it is", "\"\u20ac = #;[\"", "\u20ac = #;["s},
        {"no bare word", "on", std::nullopt},
        {"no string without an end", "\"on", std::nullopt},
        {"no lone quote", "\"", std::nullopt},
        {"no string with an escaped end", R"("on\")", std::nullopt},
        {"no string with a tail", "\"on\" x", std::nullopt},
        {"no unknown escape", R"("\x41")", std::nullopt},
        {"no half code point", R"("\u00e")", std::nullopt},
        {"no signed code point", R"("\u-001")", std::nullopt},
        {"no lone high surrogate", R"("\ud83dx")", std::nullopt},
        {"no two high surrogates", R"("\ud83d\ud83d")", std::nullopt},
        {"no lone low surrogate", R"("\ude00")", std::nullopt},
        {"no control character", "\"a\x01\"", std::nullopt},
        {"nothing at all", "", std::nullopt},
        {"no invalid UTF-8", "\"\xc3\x28\"", std::nullopt},
        {"no overlong UTF-8", "\"\xc0\xaf\"", std::nullopt},
        {"no NUL byte", "1\0"s, std::nullopt},
    };
    for (const Case& c : cases) {
        DefaultsMap expected{{"other", true}};
        if (c.value) expected.emplace("key", *c.value);
        EXPECT_EQ(parseDefaults("[defaults]\nkey=" + c.written + "\nother=true\n"), expected) << c.name;
    }
}

TEST(DefaultsFile, FindsItsLinesAmongOthers) {
    struct Case {
        const char* name;
        std::string text;
        DefaultsMap map;
    };
    const Case cases[] = {
        {"empty", "", {}},
        {"no last line end", "[defaults]\na=1", {{"a", 1.0}}},
        {"carriage returns", "[defaults]\r\na=1\r\nb=\"x\"\r\n", {{"a", 1.0}, {"b", "x"s}}},
        {"a byte order mark", "\xef\xbb\xbf[defaults]\na=1\n", {{"a", 1.0}}},
        {"comments and blanks", "# a=1\n\n [defaults] \n;b=1\n  # c=1\n \n d = 1 \n", {{"d", 1.0}}},
        {"other groups", "a=1\n[other]\nb=1\n[defaults]\nc=1\n[defaults2]\nd=1\n", {{"c", 1.0}}},
        {"the group twice", "[defaults]\na=1\nb=1\n[x]\n[defaults]\na=2\n", {{"a", 2.0}, {"b", 1.0}}},
        {"the last good line counts", "[defaults]\na=1\na=2\na=oops\n", {{"a", 2.0}}},
        {"no key", "[defaults]\n=1\nnothing\n=\nb=1\n", {{"b", 1.0}}},
        {"garbage", "[defaults]\n\xff\xfe\0\x01=\x80\n[\n]\n[defaults]\nb=1\n"s, {{"b", 1.0}}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(parseDefaults(c.text), c.map) << c.name;
}

TEST(DefaultsFile, ChangesOnlyTheLinesOfItsKeys) {
    struct Case {
        const char* name;
        std::string before;
        DefaultsChanges changes;
        std::string after;
    };
    const std::string full =
        "# mine\n\n[other]\nb=1\n[defaults]\n ; note\nunknown = {x}\nb = 1\n\na=\"x\"\n\n[last]\na=1\n";
    const Case cases[] = {
        {"no file yet", "", {{"a", 1.5}}, "[defaults]\na=1.5\n"},
        {"nothing to remove", "", {{"a", std::nullopt}}, ""},
        {"no change", full, {}, full},
        {"in its place",
         full,
         {{"b", false}},
         "# mine\n\n[other]\nb=1\n[defaults]\n ; note\nunknown = {x}\nb=false\n\na=\"x\"\n\n[last]\na=1\n"},
        {"new at the end of the group",
         full,
         {{"c", "\u20ac"s}},
         "# mine\n\n[other]\nb=1\n[defaults]\n ; note\nunknown = {x}\nb = 1\n\na=\"x\"\nc=\"\u20ac\"\n\n"
         "[last]\na=1\n"},
        {"several at once",
         full,
         {{"a", std::nullopt}, {"b", 2.0}, {"c", true}},
         "# mine\n\n[other]\nb=1\n[defaults]\n ; note\nunknown = {x}\nb=2\n\nc=true\n\n[last]\na=1\n"},
        {"no group yet", "# mine", {{"a", true}, {"b", 1.0}}, "# mine\n\n[defaults]\na=true\nb=1\n"},
        {"no last line end", "[defaults]\na=1", {{"b", 2.0}}, "[defaults]\na=1\nb=2\n"},
        {"the last line itself", "[defaults]\na=1", {{"a", 2.0}}, "[defaults]\na=2"},
        {"its line ends stay", "[defaults]\r\na=1\r\n", {{"a", 2.0}}, "[defaults]\r\na=2\r\n"},
        {"a damaged line is replaced",
         "[defaults]\na=\xff\n\xff=\n",
         {{"a", 1.0}},
         "[defaults]\na=1\n\xff=\n"},
        {"double lines become one", "[defaults]\na=1\nb=1\na=2\n", {{"a", 3.0}}, "[defaults]\nb=1\na=3\n"},
        {"all are removed", "[defaults]\na=1\nb=1\na=2\n", {{"a", std::nullopt}}, "[defaults]\nb=1\n"},
        {"keys that no line can hold",
         "",
         {{"", 1.0}, {"a=b", 1.0}, {"a\nb", 1.0}, {"#a", 1.0}, {" a", 1.0}, {"[a", 1.0}, {"\xff", 1.0}},
         ""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(rewriteDefaults(c.before, c.changes), c.after) << c.name;
}

TEST(DefaultsFile, GivesBackWhatWasWritten) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    const DefaultsValue values[] = {true,
                                    false,
                                    0.0,
                                    -0.0,
                                    0.1,
                                    1.0 / 3,
                                    1e300,
                                    -5e-324,
                                    std::numeric_limits<double>::max(),
                                    std::numeric_limits<double>::infinity(),
                                    std::nan(""),
                                    ""s,
                                    "a\nb=c\r\n\"[x]\\"s,
                                    everyByte};
    for (const DefaultsValue& value : values) {
        const std::string text = rewriteDefaults("", {{"key", value}});
        EXPECT_TRUE(holdSame(parseDefaults(text), {{"key", storable(value)}})) << text;
    }
    EXPECT_EQ(storable("a\xff\0b"s), DefaultsValue("a\ufffd\0b"s));
}

TEST(DefaultsFile, TellsMapsApart) {
    const DefaultsMap map{{"a", 1.0}, {"b", "1"s}};
    EXPECT_TRUE(holdSame(map, map));
    EXPECT_FALSE(holdSame(map, {{"a", 1.0}}));
    EXPECT_FALSE(holdSame(map, {{"a", 1.0}, {"b", 1.0}}));
    EXPECT_FALSE(holdSame(map, {{"a", 1.0}, {"c", "1"s}}));
    EXPECT_FALSE(holdSame({{"a", std::nan("")}}, {{"a", 1.0}}));
}

}  // namespace
}  // namespace norvane
