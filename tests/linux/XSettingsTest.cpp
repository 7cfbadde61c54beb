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
    using Order = XSettingsBytes::Order;
    const auto expect = [](const char* name, const XSettingsBytes& bytes, const XSettings& wanted) {
        EXPECT_EQ(parseXSettings(bytes.whole()), wanted) << name;
        EXPECT_EQ(parseXSettings(bytes.whole(Order::bigEndian)), wanted) << name << ", the other byte order";
    };
    expect("none", some(), {});
    expect("others", some().integer("Xft/DPI", 98304).color("Some/Color").string("Gtk/FontName", "Sans"), {});
    expect("animations", some().integer(kAnimations, 1), {});
    expect("behind others",
           some().color("C").string("Net/IconThemeName", "x-dark").string("", "").integer(kAnimations, 0),
           {.reducesMotion = true});
    expect("texts for numbers", some().string(kAnimations, "0").string(kPrefersDark, "1"), {});
    expect("a number and a colour for texts", some().integer(kTheme, 1).color(kOtherTheme), {});
    expect("said twice", some().integer(kAnimations, 0).integer(kAnimations, 1), {});
    expect("a dark theme", some().string(kTheme, "Plain-Dark"), {.isDark = true});
    expect("not quite dark", some().string(kTheme, "Plain-Darker"), {});
    expect("no variant", some().string(kTheme, "Dark"), {});
    expect("by its other name", some().string(kOtherTheme, "Plain-dark"), {.isDark = true});
    expect("by both names", some().string(kOtherTheme, "Plain-dark").string(kTheme, "Plain"), {});
    expect("dark preferred", some().integer(kPrefersDark, 1).string(kTheme, "Plain"), {.isDark = true});
    expect("dark not preferred", some().integer(kPrefersDark, 0).string(kTheme, "x-dark"), {.isDark = true});
    expect("both", some().integer(kAnimations, 0).string(kTheme, "Plain-dark"), kBoth);
}

TEST(XSettings, SayNothingWhereTheyAreBroken) {
    const XSettingsBytes good = some().integer(kAnimations, 0).string(kTheme, "Plain-dark");
    const std::string whole = good.whole();
    ASSERT_EQ(parseXSettings(whole), kBoth);
    EXPECT_EQ(parseXSettings(whole + "more"), kBoth);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(parseXSettings(whole.substr(0, size)), XSettings()) << size << " bytes of them";

    for (const std::string& broken :
         {good.withCount(3), good.withCount(0xFFFFFFFF), 'B' + whole.substr(1),
          XSettingsBytes(good).setting({3, "Some/Thing", 0, {}}).whole(),
          XSettingsBytes(good).setting({1, "Some/EndlessText", 0xFFFFFFFF, {}}).whole()}) {
        EXPECT_EQ(parseXSettings(broken), XSettings()) << testing::PrintToString(broken);
    }
}

}  // namespace
}  // namespace norvane
