#include "platform/linux/XSettings.h"

#include <gtest/gtest.h>

#include "linux/XSettingsBytes.h"

namespace norvane {
namespace {

constexpr const char* kAnimations = "Gtk/EnableAnimations";
constexpr const char* kPrefersDark = "Gtk/ApplicationPreferDarkTheme";
constexpr const char* kTheme = "Net/ThemeName";
XSettingsBytes some() {
    return {};
}

TEST(XSettings, AreTakenFromAmongOthersInEitherByteOrder) {
    const auto expect = [](const char* name, const XSettingsBytes& bytes, const XSettings& wanted) {
        EXPECT_EQ(parseXSettings(bytes.whole()), wanted) << name;
        EXPECT_EQ(parseXSettings(bytes.whole(XSettingsBytes::Order::bigEndian)), wanted) << name;
    };
    expect("behind others",
           some().color("C").string("Net/IconThemeName", "x-dark").string("", "").integer(kAnimations, 0),
           {.reducesMotion = true});
    expect("texts for numbers", some().string(kAnimations, "0").string(kPrefersDark, "1"), {});
    expect("a number and a colour for texts", some().integer(kTheme, 1).color("Gtk/ThemeName"), {});
    expect("said twice", some().integer(kAnimations, 0).integer(kAnimations, 1), {});
    expect("not quite dark", some().string(kTheme, "Plain-Darker"), {});
    expect("by its other name", some().string("Gtk/ThemeName", "Plain-dark"), {.isDark = true});
    expect("by both names", some().string("Gtk/ThemeName", "Plain-dark").string(kTheme, "Plain"), {});
    expect("dark preferred", some().integer(kPrefersDark, 1).string(kTheme, "Plain"), {.isDark = true});
    expect("dark not preferred", some().integer(kPrefersDark, 0).string(kTheme, "x-dark"), {.isDark = true});
}

TEST(XSettings, SayNothingWhereTheyAreBroken) {
    const XSettingsBytes good = some().integer(kAnimations, 0).string(kTheme, "Plain-dark");
    ASSERT_EQ(parseXSettings(good.whole()), (XSettings{.reducesMotion = true, .isDark = true}));
    for (const std::string& broken :
         {good.withCount(3), good.withCount(0xFFFFFFFF), 'B' + good.whole().substr(1),
          XSettingsBytes(good).setting({3, "Some/Thing", 0, {}}).whole(),
          XSettingsBytes(good).setting({1, "Some/EndlessText", 0xFFFFFFFF, {}}).whole()}) {
        EXPECT_EQ(parseXSettings(broken), XSettings()) << testing::PrintToString(broken);
    }
}

}  // namespace
}  // namespace norvane
