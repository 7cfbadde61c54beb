#include "platform/linux/LinuxAppearance.h"

#include <array>
#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/linux/GVariantPointer.h"
#include "platform/Observers.h"

namespace norvane {
namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kColorScheme = "color-scheme";
constexpr const char* kAccentColor = "accent-color";
// Portals older than version 2 of the interface lack the former.
constexpr const char* kReadOne = "ReadOne";
constexpr const char* kRead = "Read";
constexpr std::uint32_t kDarkScheme = 1;

// The setting at this place in an answer or a signal. `Read` packs the variant into another one.
GVariantPointer settingAt(GVariant* tuple, gsize place) {
    GVariantPointer value(g_variant_get_child_value(tuple, place));
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    return value;
}

bool isDarkScheme(GVariant* value) {
    return g_variant_is_of_type(value, G_VARIANT_TYPE_UINT32) && g_variant_get_uint32(value) == kDarkScheme;
}

// A component out of its range is how a portal says that no colour is set.
std::optional<Color> colorFrom(GVariant* value) {
    if (!g_variant_is_of_type(value, G_VARIANT_TYPE("(ddd)"))) return std::nullopt;
    Color color;
    g_variant_get(value, "(ddd)", &color.red, &color.green, &color.blue);
    const auto isComponent = [](double number) { return number >= 0 && number <= 1; };
    if (!isComponent(color.red) || !isComponent(color.green) || !isComponent(color.blue)) return std::nullopt;
    return color;
}

bool isNotFound(const GError& error) {
    const std::unique_ptr<gchar, decltype(&g_free)> name(g_dbus_error_get_remote_error(&error), &g_free);
    return name != nullptr && std::string_view(name.get()) == "org.freedesktop.portal.Error.NotFound";
}

}  // namespace

// The conversation with the portal.
class LinuxAppearance::Portal {
 public:
    explicit Portal(BusConnection& bus);

    bool isDark() const { return isDark_; }
    const std::optional<Color>& accentColor() const { return accentColor_; }
    Observers<>& observers() { return observers_; }

 private:
    // One setting of the group, and the question for it.
    struct Setting {
        const char* key;
        // Given its value, or null where the portal has none.
        void (Portal::*take)(GVariant* value);
        bool isAsking = false;
        Cancellation question = {};
    };

    void askAll();
    void ask(Setting& setting, const char* method);
    void settingChanged(GVariant* parameters);
    void takeScheme(GVariant* value);
    void takeAccentColor(GVariant* value);

    BusConnection& bus_;
    bool isDark_ = false;
    std::optional<Color> accentColor_;
    Observers<> observers_;
    Cancellation settings_;
    Cancellation owner_;
    Cancellation connection_;
    std::array<Setting, 2> followed_{Setting{.key = kColorScheme, .take = &Portal::takeScheme},
                                     Setting{.key = kAccentColor, .take = &Portal::takeAccentColor}};
};

LinuxAppearance::Portal::Portal(BusConnection& bus) : bus_(bus) {
    settings_ = bus.onSignal({.sender = kPortalName,
                              .path = kPortalPath,
                              .interface = kSettings,
                              .member = "SettingChanged",
                              .firstArgument = kAppearance},
                             [this](GVariant* parameters) { settingChanged(parameters); });
    // The portal may come, or come back, long after this process.
    owner_ = bus.onOwnerChange(kPortalName, [this](bool hasOwner) {
        if (hasOwner) askAll();
    });
    connection_ = bus.onStateChange([this](BusConnection::State state) {
        if (state != BusConnection::State::connected) return;
        for (Setting& setting : followed_)
            setting.isAsking = false;  // over the connection that was lost
        askAll();
    });
    if (bus.state() == BusConnection::State::connected) askAll();
}

void LinuxAppearance::Portal::settingChanged(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)"))) return;
    const gchar* group = nullptr;
    const gchar* key = nullptr;
    g_variant_get_child(parameters, 0, "&s", &group);
    g_variant_get_child(parameters, 1, "&s", &key);
    if (std::string_view(group) != kAppearance) return;
    for (const Setting& setting : followed_) {
        if (std::string_view(key) == setting.key) (this->*setting.take)(settingAt(parameters, 2).get());
    }
}

void LinuxAppearance::Portal::askAll() {
    for (Setting& setting : followed_) {
        if (!setting.isAsking) ask(setting, kReadOne);
    }
}

void LinuxAppearance::Portal::ask(Setting& setting, const char* method) {
    setting.isAsking = true;
    setting.question =
        bus_.call({.name = kPortalName,
                   .path = kPortalPath,
                   .interface = kSettings,
                   .method = method,
                   .parameters = g_variant_new("(ss)", kAppearance, setting.key),
                   .answerType = G_VARIANT_TYPE("(v)")},
                  [this, &setting, method](GVariant* answer, const GError* error) {
                      setting.isAsking = false;
                      if (answer != nullptr) {
                          (this->*setting.take)(settingAt(answer, 0).get());
                      } else if (method == kReadOne &&
                                 g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD)) {
                          ask(setting, kRead);
                      } else if (isNotFound(*error)) {
                          (this->*setting.take)(nullptr);
                      }
                  });
}

void LinuxAppearance::Portal::takeScheme(GVariant* value) {
    const bool isDark = value != nullptr && isDarkScheme(value);
    if (std::exchange(isDark_, isDark) != isDark) observers_.tell();
}

void LinuxAppearance::Portal::takeAccentColor(GVariant* value) {
    const auto color = value != nullptr ? colorFrom(value) : std::nullopt;
    if (std::exchange(accentColor_, color) != color) observers_.tell();
}

LinuxAppearance::LinuxAppearance(BusConnection& sessionBus) : portal_(std::make_unique<Portal>(sessionBus)) {}

LinuxAppearance::~LinuxAppearance() = default;

bool LinuxAppearance::isDark() const {
    return portal_->isDark();
}

std::optional<Color> LinuxAppearance::accentColor() const {
    return portal_->accentColor();
}

Cancellation LinuxAppearance::onDidChange(std::function<void()> observer) {
    return portal_->observers().add(std::move(observer));
}

}  // namespace norvane
