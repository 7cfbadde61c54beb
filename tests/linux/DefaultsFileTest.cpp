#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/linux/DefaultsFile.h"

namespace norvane {
namespace {

using namespace std::string_literals;

TEST(DefaultsFile, ReadsOneValueOfAnyKind) {
    const auto expect = [](const std::string& written, const std::optional<DefaultsValue>& value) {
        DefaultsMap expected{{"other", true}};
        if (value) expected.emplace("key", *value);
        EXPECT_EQ(parseDefaults("[defaults]\nkey=" + written + "\nother=true\n"), expected) << written;
    };
    expect("true", true);
    expect("  false\t", false);
    expect("20", 20.0);
    expect("-0.25", -0.25);
    expect("1e3", 1000.0);
    expect("inf", std::numeric_limits<double>::infinity());
    expect("\"\"", ""s);
    expect("\"1\"", "1"s);
    expect(R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"s);
    expect(R"("\u00e9\u20AC\ud83d\ude00")", "\u00e9\u20ac\U0001f600"s);
    expect(R"("\u0000")", "\0"s);
    expect("\"\u20ac = #;[\"", "\u20ac = #;["s);
    for (const std::string& damaged : {"True"s,         "1,5"s,          "12 GB"s,
                                       "1e999"s,        "on"s,           ""s,
                                       "\"on"s,         "\""s,           R"("on\")"s,
                                       "\"on\" x"s,     R"("\x41")"s,    R"("\u00e")"s,
                                       R"("\u-001")"s,  R"("\ud83dx")"s, R"("\ud83d\ud83d")"s,
                                       R"("\ude00")"s,  "\"a\x01\""s,    "\"\xc3\x28\""s,
                                       "\"\xc0\xaf\""s, "1\0"s}) {
        expect(damaged, std::nullopt);
    }
}

TEST(DefaultsFile, FindsItsLinesAmongOthers) {
    const auto expect = [](const std::string& text, const DefaultsMap& map) {
        EXPECT_EQ(parseDefaults(text), map) << text;
    };
    expect("", {});
    expect("[defaults]\na=1", {{"a", 1.0}});
    expect("[defaults]\r\na=1\r\nb=\"x\"\r\n", {{"a", 1.0}, {"b", "x"s}});
    expect("\xef\xbb\xbf[defaults]\na=1\n", {{"a", 1.0}});
    expect("# a=1\n\n [defaults] \n;b=1\n  # c=1\n \n d = 1 \n", {{"d", 1.0}});
    expect("a=1\n[other]\nb=1\n[defaults]\nc=1\n[defaults2]\nd=1\n", {{"c", 1.0}});
    expect("[defaults]\na=1\nb=1\n[x]\n[defaults]\na=2\n", {{"a", 2.0}, {"b", 1.0}});
    expect("[defaults]\na=1\na=2\na=oops\n", {{"a", 2.0}});
    expect("[defaults]\n=1\nnothing\n=\n\xff\xfe\0\x01=\x80\n[\n]\n[defaults]\nb=1\n"s, {{"b", 1.0}});
}

TEST(DefaultsFile, ChangesOnlyTheLinesOfItsKeys) {
    const auto expect = [](const std::string& before, const DefaultsChanges& changes,
                           const std::string& after) {
        EXPECT_EQ(rewriteDefaults(before, changes), after) << before;
    };
    const std::string above = "# mine\n\n[other]\nb=1\n[defaults]\n ; note\nunknown = {x}\n";
    const std::string full = above + "b = 1\n\na=\"x\"\n\n[last]\na=1\n";
    expect("", {{"a", 1.5}}, "[defaults]\na=1.5\n");
    expect("", {{"a", std::nullopt}}, "");
    expect(full, {}, full);
    expect(full, {{"b", false}}, above + "b=false\n\na=\"x\"\n\n[last]\na=1\n");
    expect(full, {{"c", "\u20ac"s}}, above + "b = 1\n\na=\"x\"\nc=\"\u20ac\"\n\n[last]\na=1\n");
    expect(full, {{"a", std::nullopt}, {"b", 2.0}, {"c", true}}, above + "b=2\n\nc=true\n\n[last]\na=1\n");
    expect("# mine", {{"a", true}, {"b", 1.0}}, "# mine\n\n[defaults]\na=true\nb=1\n");
    expect("[defaults]\na=1", {{"b", 2.0}}, "[defaults]\na=1\nb=2\n");
    expect("[defaults]\na=1", {{"a", 2.0}}, "[defaults]\na=2");
    expect("[defaults]\r\na=1\r\n", {{"a", 2.0}}, "[defaults]\r\na=2\r\n");
    expect("[defaults]\na=\xff\n\xff=\n", {{"a", 1.0}}, "[defaults]\na=1\n\xff=\n");
    expect("[defaults]\na=1\nb=1\na=2\n", {{"a", 3.0}}, "[defaults]\nb=1\na=3\n");
    expect("[defaults]\na=1\nb=1\na=2\n", {{"a", std::nullopt}}, "[defaults]\nb=1\n");
    for (const char* noKey : {"", "a=b", "a\nb", "#a", " a", "[a", "\xff"})
        expect("", {{noKey, 1.0}}, "");
}

TEST(DefaultsFile, GivesBackWhatWasWritten) {
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    using Doubles = std::numeric_limits<double>;
    for (const DefaultsValue& value :
         std::vector<DefaultsValue>{true, 0.0, -0.0, 0.1, 1.0 / 3, -5e-324, Doubles::max(),
                                    Doubles::infinity(), std::nan(""), ""s, everyByte}) {
        const std::string text = rewriteDefaults("", {{"key", value}});
        EXPECT_TRUE(holdSame(parseDefaults(text), {{"key", storable(value)}})) << text;
    }
    EXPECT_EQ(storable("a\xff\0b"s), DefaultsValue("a\ufffd\0b"s));
    EXPECT_FALSE(holdSame({{"a", 1.0}, {"b", "1"s}}, {{"a", 1.0}}));
    EXPECT_FALSE(holdSame({{"a", "1"s}}, {{"a", 1.0}}));
    EXPECT_FALSE(holdSame({{"a", 1.0}}, {{"b", 1.0}}));
    EXPECT_FALSE(holdSame({{"a", std::nan("")}}, {{"a", 1.0}}));
}

}  // namespace
}  // namespace norvane
