#include "platform/linux/XSettings.h"

#include <gtest/gtest.h>

#include "linux/XSettingsBytes.h"

namespace norvane {
namespace {

constexpr const char* kAnimations = "Gtk/EnableAnimations";
constexpr const char* kPrefersDark = "Gtk/ApplicationPreferDarkTheme";
constexpr const char* kTheme = "Net/ThemeName";
constexpr const char* kOtherTheme = "Gtk/ThemeName";
constexpr XSettings kBoth{.reducesMotion = true, .isDark = true};

XSettingsBytes some() {
    return {};
}

TEST(XSettings, AreTakenFromAmongOthersInEitherByteOrder) {
    const struct {
        const char* name;
        XSettingsBytes bytes;
        XSettings wanted;
    } cases[] = {
        {"none", some(), {}},
        {"others", some().integer("Xft/DPI", 98304).color("Some/Color").string("Gtk/FontName", "Sans"), {}},
        {"no animations", some().integer(kAnimations, 0), {.reducesMotion = true}},
        {"animations", some().integer(kAnimations, 1), {}},
        {"behind others",
         some().color("C").string("Net/IconThemeName", "x-dark").string("", "").integer(kAnimations, 0),
         {.reducesMotion = true}},
        {"texts for numbers", some().string(kAnimations, "0").string(kPrefersDark, "1"), {}},
        {"a number and a colour for texts", some().integer(kTheme, 1).color(kOtherTheme), {}},
        {"said twice", some().integer(kAnimations, 0).integer(kAnimations, 1), {}},
        {"a dark theme", some().string(kTheme, "Plain-dark"), {.isDark = true}},
        {"another dark theme", some().string(kTheme, "Plain-Dark"), {.isDark = true}},
        {"not quite dark", some().string(kTheme, "Plain-Darker"), {}},
        {"no variant", some().string(kTheme, "Dark"), {}},
        {"by its other name", some().string(kOtherTheme, "Plain-dark"), {.isDark = true}},
        {"by both names", some().string(kOtherTheme, "Plain-dark").string(kTheme, "Plain"), {}},
        {"dark preferred", some().integer(kPrefersDark, 1).string(kTheme, "Plain"), {.isDark = true}},
        {"dark not preferred", some().integer(kPrefersDark, 0).string(kTheme, "x-dark"), {.isDark = true}},
        {"both", some().integer(kAnimations, 0).string(kTheme, "Plain-dark"), kBoth},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(parseXSettings(c.bytes.whole()), c.wanted) << c.name;
        EXPECT_EQ(parseXSettings(c.bytes.whole(XSettingsBytes::Order::bigEndian)), c.wanted)
            << c.name << ", the other byte order";
    }
}

TEST(XSettings, SayNothingWhereTheyAreBroken) {
    const XSettingsBytes good = some().integer(kAnimations, 0).string(kTheme, "Plain-dark");
    const std::string whole = good.whole();
    ASSERT_EQ(parseXSettings(whole), kBoth);
    EXPECT_EQ(parseXSettings(whole + "more"), kBoth);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(parseXSettings(whole.substr(0, size)), XSettings()) << size << " bytes of them";

    const struct {
        const char* name;
        std::string bytes;
    } cases[] = {
        {"more than there are", good.withCount(3)},
        {"far more than there are", good.withCount(0xFFFFFFFF)},
        {"a byte order of its own", 'B' + whole.substr(1)},
        {"the other byte order", '\1' + whole.substr(1)},
        {"an unknown type", XSettingsBytes(good).setting({3, "Some/Thing", 0, {}}).whole()},
        {"an endless text", XSettingsBytes(good).setting({1, "Some/Text", 0xFFFFFFFF, {}}).whole()},
        {"a name beyond the end", good.withCount(3) + std::string("\0\0\xFF\xFF", 4)},
        {"all ones", std::string(4096, '\xFF')},
    };
    for (const auto& c : cases)
        EXPECT_EQ(parseXSettings(c.bytes), XSettings()) << c.name;
}

}  // namespace
}  // namespace norvane
