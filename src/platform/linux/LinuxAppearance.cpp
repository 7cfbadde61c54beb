#include "platform/linux/LinuxAppearance.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/linux/GVariantPointer.h"
#include "platform/linux/WellKnownNames.h"

namespace norvane {
namespace {

constexpr const char* kSettings = "org.freedesktop.portal.Settings";
// Groups of settings: the one for all desktops, and those of two desktops.
constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kGnomeInterface = "org.gnome.desktop.interface";
constexpr const char* kPlasmaGlobals = "org.kde.kdeglobals.KDE";
// Portals older than version 2 of the interface lack the former.
constexpr const char* kReadOne = "ReadOne";
constexpr const char* kRead = "Read";
constexpr std::uint32_t kDarkScheme = 1;
constexpr std::uint32_t kLightScheme = 2;
constexpr std::uint32_t kReducedMotion = 1;

// The setting at this place in an answer or a signal. `Read` packs the variant into another one.
GVariantPointer settingAt(GVariant* tuple, gsize place) {
    GVariantPointer value(g_variant_get_child_value(tuple, place));
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    return value;
}

// What a setting's value says; none where the portal has no such setting, or a value of another type.

bool isOfType(GVariant* value, const char* type) {
    return value != nullptr && g_variant_is_of_type(value, G_VARIANT_TYPE(type));
}

// A scheme without a preference leaves it to others to say.
std::optional<bool> isDarkBy(GVariant* scheme) {
    if (!isOfType(scheme, "u")) return std::nullopt;
    const std::uint32_t number = g_variant_get_uint32(scheme);
    if (number != kDarkScheme && number != kLightScheme) return std::nullopt;
    return number == kDarkScheme;
}

// A component out of its range is how a portal says that no colour is set.
std::optional<Color> colorFrom(GVariant* value) {
    if (!isOfType(value, "(ddd)")) return std::nullopt;
    Color color;
    g_variant_get(value, "(ddd)", &color.red, &color.green, &color.blue);
    const auto isComponent = [](double number) { return number >= 0 && number <= 1; };
    if (!isComponent(color.red) || !isComponent(color.green) || !isComponent(color.blue)) return std::nullopt;
    return color;
}

std::optional<bool> isReducedBy(GVariant* preference) {
    if (!isOfType(preference, "u")) return std::nullopt;
    return g_variant_get_uint32(preference) == kReducedMotion;
}

std::optional<bool> isReducedBySwitch(GVariant* hasAnimations) {
    if (!isOfType(hasAnimations, "b")) return std::nullopt;
    return g_variant_get_boolean(hasAnimations) == FALSE;
}

// By what the length of every animation is multiplied with: a decimal number in a text.
std::optional<bool> isReducedByFactor(GVariant* factor) {
    if (!isOfType(factor, "s")) return std::nullopt;
    gsize length = 0;
    const gchar* const text = g_variant_get_string(factor, &length);
    double number = 0;
    const auto [end, error] = std::from_chars(text, text + length, number);
    if (error != std::errc{} || end != text + length || !std::isfinite(number) || number < 0)
        return std::nullopt;
    return number == 0;
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

    // None where it does not say.
    const std::optional<bool>& isDark() const { return isDark_; }
    const std::optional<Color>& accentColor() const { return accentColor_; }
    std::optional<bool> reducesMotion() const;
    // Told after any of it may have changed.
    Observers<>& observers() { return observers_; }

 private:
    // One setting, and the question for it.
    struct Setting {
        const char* group;
        const char* key;
        // Given its value, or null where the portal has none.
        void (Portal::*take)(GVariant* value);
        bool isAsking = false;
        Cancellation question = {};
    };

    void askAll();
    void ask(Setting& setting, const char* method);
    void settingChanged(GVariant* parameters);
    template <typename Said>
    void keep(Said& place, Said said) {
        if (std::exchange(place, said) != said) observers_.tell();
    }
    void takeScheme(GVariant* value) { keep(isDark_, isDarkBy(value)); }
    void takeAccentColor(GVariant* value) { keep(accentColor_, colorFrom(value)); }
    void takePreference(GVariant* value) { keep(isReduced_, isReducedBy(value)); }
    void takeSwitch(GVariant* value) { keep(isReducedBySwitch_, isReducedBySwitch(value)); }
    void takeFactor(GVariant* value) { keep(isReducedByFactor_, isReducedByFactor(value)); }

    BusConnection& bus_;
    std::optional<bool> isDark_;
    std::optional<Color> accentColor_;
    std::optional<bool> isReduced_;
    std::optional<bool> isReducedBySwitch_;
    std::optional<bool> isReducedByFactor_;
    Observers<> observers_;
    std::vector<Cancellation> settings_;
    Cancellation owner_;
    Cancellation connection_;
    std::array<Setting, 5> followed_{
        Setting{.group = kAppearance, .key = "color-scheme", .take = &Portal::takeScheme},
        Setting{.group = kAppearance, .key = "accent-color", .take = &Portal::takeAccentColor},
        Setting{.group = kAppearance, .key = "reduced-motion", .take = &Portal::takePreference},
        Setting{.group = kGnomeInterface, .key = "enable-animations", .take = &Portal::takeSwitch},
        Setting{.group = kPlasmaGlobals, .key = "AnimationDurationFactor", .take = &Portal::takeFactor}};
};

LinuxAppearance::Portal::Portal(BusConnection& bus) : bus_(bus) {
    // Each group by itself: portals tell of every setting of the desktop, and would wake us for it.
    for (const char* const group : {kAppearance, kGnomeInterface, kPlasmaGlobals}) {
        settings_.push_back(bus.onSignal({.sender = kPortalName,
                                          .path = kPortalPath,
                                          .interface = kSettings,
                                          .member = "SettingChanged",
                                          .firstArgument = group},
                                         [this](GVariant* parameters) { settingChanged(parameters); }));
    }
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

// What is meant for all desktops is trusted before what is one desktop's own.
std::optional<bool> LinuxAppearance::Portal::reducesMotion() const {
    if (isReduced_) return isReduced_;
    return isReducedBySwitch_ ? isReducedBySwitch_ : isReducedByFactor_;
}

void LinuxAppearance::Portal::settingChanged(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)"))) return;
    const gchar* group = nullptr;
    const gchar* key = nullptr;
    g_variant_get_child(parameters, 0, "&s", &group);
    g_variant_get_child(parameters, 1, "&s", &key);
    for (const Setting& setting : followed_) {
        if (std::string_view(group) == setting.group && std::string_view(key) == setting.key)
            (this->*setting.take)(settingAt(parameters, 2).get());
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
                   .parameters = g_variant_new("(ss)", setting.group, setting.key),
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

LinuxAppearance::LinuxAppearance(BusConnection& sessionBus, const Published<XSettings>& xSettings)
    : portal_(std::make_unique<Portal>(sessionBus)),
      xSettings_(xSettings),
      look_(lookNow()),
      portalChanges_(portal_->observers().add([this] { update(); })),
      xChanges_(xSettings.observe([this](const XSettings&) { update(); })) {}

LinuxAppearance::~LinuxAppearance() = default;

Cancellation LinuxAppearance::onDidChange(std::function<void()> observer) {
    return observers_.add(std::move(observer));
}

LinuxAppearance::Look LinuxAppearance::lookNow() const {
    const XSettings xSettings = xSettings_.get();
    return {.isDark = portal_->isDark().value_or(xSettings.isDark),
            .accentColor = portal_->accentColor(),
            .reducesMotion = portal_->reducesMotion().value_or(xSettings.reducesMotion)};
}

void LinuxAppearance::update() {
    const Look look = lookNow();
    if (std::exchange(look_, look) != look) observers_.tell();
}

}  // namespace norvane
