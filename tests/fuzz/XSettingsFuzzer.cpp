#include <algorithm>
#include <string>

#include "platform/linux/XSettings.h"
#include "Property.h"

namespace norvane {
namespace {

constexpr std::size_t kCount = 8;     // where the number of settings is
constexpr std::size_t kRecords = 12;  // where they begin

std::string number(std::uint32_t value, unsigned size, bool isBigEndian) {
    std::string bytes;
    for (unsigned i = 0; i < size; ++i)
        bytes += static_cast<char>(value >> 8 * i);
    if (isBigEndian) std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

std::string integer(const std::string& name, std::uint32_t value, bool isBigEndian) {
    return std::string(2, '\0') + number(static_cast<std::uint32_t>(name.size()), 2, isBigEndian) + name +
           std::string((4 - name.size() % 4) % 4, '\0') + number(1, 4, isBigEndian) +
           number(value, 4, isBigEndian);
}

std::string printed(const XSettings& settings, bool isBigEndian) {
    return std::string{isBigEndian ? '\1' : '\0', '\0', '\0', '\0'} + number(9, 4, isBigEndian) +
           number(2, 4, isBigEndian) +
           integer("Gtk/EnableAnimations", settings.reducesMotion ? 0 : 1, isBigEndian) +
           integer("Gtk/ApplicationPreferDarkTheme", settings.isDark ? 1 : 0, isBigEndian);
}

// The same with one more in front of the others.
std::string afterAnUnknownSetting(std::string_view text) {
    std::string bytes(text);
    if (bytes.size() < kRecords) return bytes;
    const bool isBigEndian = bytes[0] == '\1';
    std::uint32_t count = 0;
    for (unsigned i = 0; i < 4; ++i) {
        const std::uint32_t byte = static_cast<unsigned char>(bytes[kCount + (isBigEndian ? i : 3 - i)]);
        count = count << 8 | byte;
    }
    if (count == 0xFFFFFFFF) return bytes;
    bytes.replace(kCount, 4, number(count + 1, 4, isBigEndian));
    return bytes.insert(kRecords, integer("Some/Thing", 0, isBigEndian));
}

}  // namespace

void check(std::string_view text) {
    const XSettings settings = parseXSettings(text);
    const auto has = [text](std::string_view words) { return text.find(words) != std::string_view::npos; };
    require(!settings.reducesMotion || has("Gtk/EnableAnimations"), "somebody has said that nothing moves");
    require(!settings.isDark || has("Gtk/ApplicationPreferDarkTheme") ||
                (has("/ThemeName") && (has("-dark") || has("-Dark"))),
            "somebody has said that it is dark");
    require(parseXSettings(afterAnUnknownSetting(text)) == settings, "unknown settings don't matter");
    for (const bool isBigEndian : {false, true})
        require(parseXSettings(printed(settings, isBigEndian)) == settings,
                "what was said survives printing");
    if (settings == XSettings{}) return;
    require(parseXSettings(std::string(text) + "more") == settings, "what follows doesn't matter");
    for (const std::size_t size : {text.size() - 1, text.size() / 2, kRecords}) {
        const XSettings less = parseXSettings(text.substr(0, size));
        require(less == settings || less == XSettings{}, "settings are said in full or not at all");
    }
}

}  // namespace norvane
