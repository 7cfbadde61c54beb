#include "platform/linux/XSettings.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace norvane {
namespace {

constexpr std::uint32_t kLittleEndian = 0;
constexpr std::uint32_t kBigEndian = 1;

// Types of settings.
constexpr std::uint32_t kInteger = 0;
constexpr std::uint32_t kString = 1;
constexpr std::uint32_t kColor = 2;
constexpr std::size_t kColorBytes = 8;

// Takes the fields off the bytes, one after another. Where they have come to an end there are zeros and empty
// texts.
class Fields {
 public:
    explicit Fields(std::string_view bytes) : rest_(bytes) {}

    void setBigEndian(bool isBigEndian) { isBigEndian_ = isBigEndian; }
    // Whether a field was asked for that is not there in full.
    bool areCutOff() const { return areCutOff_; }

    std::string_view take(std::size_t size) {
        if (size > rest_.size()) {
            areCutOff_ = true;
            rest_ = {};
        }
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    std::uint32_t number(std::size_t size) {
        std::uint32_t number = 0;
        unsigned shift = 0;
        for (const char each : take(size)) {
            const std::uint32_t byte = static_cast<unsigned char>(each);
            number = isBigEndian_ ? number << 8 | byte : number | byte << shift;
            shift += 8;
        }
        return number;
    }
    // With the bytes that fill it up to a multiple of 4.
    std::string_view text(std::size_t length) {
        const std::string_view text = take(length);
        take((4 - length % 4) % 4);
        return text;
    }

 private:
    std::string_view rest_;
    bool isBigEndian_ = false;
    bool areCutOff_ = false;
};

// The settings that we know, as far as they are there.
struct KnownSettings {
    std::optional<std::uint32_t> enableAnimations;
    std::optional<std::uint32_t> preferDarkTheme;
    std::optional<std::string_view> netTheme;
    std::optional<std::string_view> gtkTheme;

    void takeInteger(std::string_view name, std::uint32_t value) {
        if (name == "Gtk/EnableAnimations") enableAnimations = value;
        if (name == "Gtk/ApplicationPreferDarkTheme") preferDarkTheme = value;
    }
    void takeString(std::string_view name, std::string_view value) {
        if (name == "Net/ThemeName") netTheme = value;
        if (name == "Gtk/ThemeName") gtkTheme = value;
    }
};

// False where there is none of a known type.
bool takeSetting(Fields& fields, KnownSettings& known) {
    const std::uint32_t type = fields.number(1);
    fields.take(1);
    const std::string_view name = fields.text(fields.number(2));
    fields.take(4);  // when it last changed
    switch (type) {
        case kInteger:
            known.takeInteger(name, fields.number(4));
            break;
        case kString:
            known.takeString(name, fields.text(fields.number(4)));
            break;
        case kColor:
            fields.take(kColorBytes);
            break;
        default:
            return false;
    }
    return !fields.areCutOff();
}

}  // namespace

XSettings parseXSettings(std::string_view bytes) {
    Fields fields(bytes);
    const std::uint32_t order = fields.number(1);
    if (order != kLittleEndian && order != kBigEndian) return {};
    fields.setBigEndian(order == kBigEndian);
    fields.take(3);
    fields.take(4);  // when any of them last changed
    KnownSettings known;
    // However many there are said to be: the bytes come to an end.
    for (std::uint32_t left = fields.number(4); left > 0; --left) {
        if (!takeSetting(fields, known)) return {};
    }
    const std::string_view theme = known.netTheme.value_or(known.gtkTheme.value_or(std::string_view()));
    return {.reducesMotion = known.enableAnimations == 0U,
            .isDark = known.preferDarkTheme.value_or(0) != 0 || theme.ends_with("-dark") ||
                      theme.ends_with("-Dark")};
}

}  // namespace norvane
