#include <gtest/gtest.h>

#include "platform/linux/DefaultsFile.h"

namespace norvane {
namespace {

using namespace std::string_literals;

// What must hold for any bytes, such as that what is written is read back, is in tests/fuzz.
TEST(DefaultsFile, ReadsOneValueOfAnyKind) {
    const auto expect = [](const std::string& written, const std::optional<DefaultsValue>& value) {
        DefaultsMap expected{{"other", true}};
        if (value) expected.emplace("key", *value);
        EXPECT_EQ(parseDefaults("[defaults]\nkey=" + written + "\nother=true\n"), expected) << written;
    };
    expect("  false\t", false);
    expect("-2.5e1", -25.0);
    expect(R"("\"\\\/\b\f\n\r\t")", "\"\\/\b\f\n\r\t"s);
    expect(R"("\u00e9\u20AC\ud83d\ude00\u0000")", "\u00e9\u20ac\U0001f600\0"s);
    for (const std::string& damaged :
         {"True"s, "1,5"s, "12 GB"s, "1e999"s, ""s, "\"on"s, "\""s, R"("on\")"s, "\"on\" x"s, R"("\x41")"s,
          R"("\u00e")"s, R"("\u-001")"s, R"("\ud83dx")"s, R"("\ud83d\ud83d")"s, R"("\ude00")"s, "\"a\x01\""s,
          "\"\xc3\x28\""s, "\"\xc0\xaf\""s, "1\0"s})
        expect(damaged, std::nullopt);
}

TEST(DefaultsFile, FindsItsLinesAmongOthers) {
    const auto expect = [](const std::string& text, const DefaultsMap& map) {
        EXPECT_EQ(parseDefaults(text), map) << text;
    };
    expect("[defaults]\r\na=1\r\nb=\"x\"", {{"a", 1.0}, {"b", "x"s}});
    expect("\xef\xbb\xbf[defaults]\na=1\n", {{"a", 1.0}});
    expect("# a=1\n\n [defaults] \n;b=1\n  # c=1\n \n d = 1 \n", {{"d", 1.0}});
    expect("a=1\n[other]\nb=1\n[defaults]\nc=1\n[defaults2]\nd=1\n", {{"c", 1.0}});
    expect("[defaults]\na=1\nb=1\n[x]\n[defaults]\na=2\n", {{"a", 2.0}, {"b", 1.0}});
    expect("[defaults]\n=1\nnothing\n=\n\xff\xfe\0\x01=\x80\n[\n]\n[defaults]\nb=1\n"s, {{"b", 1.0}});
}

TEST(DefaultsFile, ChangesOnlyTheLinesOfItsKeys) {
    const auto expect = [](const std::string& before, const DefaultsChanges& changes,
                           const std::string& after) {
        EXPECT_EQ(rewriteDefaults(before, changes), after) << before;
    };
    const std::string above = "# mine\n\n[other]\nb=1\n[defaults]\n ; note\nunknown = {x}\n";
    const std::string full = above + "b = 1\n\na=\"x\"\n\n[last]\na=1\n";
    expect(full, {{"a", std::nullopt}, {"b", 2.0}, {"c", true}}, above + "b=2\n\nc=true\n\n[last]\na=1\n");
    expect("# mine", {{"a", true}}, "# mine\n\n[defaults]\na=true\n");
    expect("[defaults]\na=1", {{"b", 2.0}}, "[defaults]\na=1\nb=2\n");
    expect("[defaults]\na=\xff\n\xff=\n", {{"a", 1.0}}, "[defaults]\na=1\n\xff=\n");
    expect("[defaults]\na=1\nb=1\na=2\n", {{"a", 3.0}}, "[defaults]\nb=1\na=3\n");
    for (const char* noKey : {"", "a=b", "a\nb", "#a", " a", "[a", "\xff"})
        expect("", {{noKey, 1.0}}, "");
}

}  // namespace
}  // namespace norvane
