#include "platform/linux/LinuxAppearance.h"

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
constexpr std::uint32_t kDarkScheme = 1;

// The colour scheme at this place in an answer or a signal. `Read` packs the variant into another one.
bool isDarkScheme(GVariant* tuple, gsize place) {
    GVariantPointer value(g_variant_get_child_value(tuple, place));
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32) &&
           g_variant_get_uint32(value.get()) == kDarkScheme;
}

}  // namespace

// The conversation with the portal.
class LinuxAppearance::Portal {
 public:
    explicit Portal(BusConnection& bus);

    bool isDark() const { return isDark_; }
    Observers<>& observers() { return observers_; }

 private:
    void ask();
    void askOldPortal();
    void settingChanged(GVariant* parameters);
    void setDark(bool isDark);

    BusConnection& bus_;
    Cancellation settings_;
    Cancellation owner_;
    Cancellation connection_;
    Cancellation question_;
    bool isAsking_ = false;
    bool isDark_ = false;
    Observers<> observers_;
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
        if (hasOwner) ask();
    });
    connection_ = bus.onStateChange([this](BusConnection::State state) {
        if (state != BusConnection::State::connected) return;
        isAsking_ = false;  // over the connection that was lost
        ask();
    });
    if (bus.state() == BusConnection::State::connected) ask();
}

void LinuxAppearance::Portal::settingChanged(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)"))) return;
    const gchar* group = nullptr;
    const gchar* key = nullptr;
    g_variant_get_child(parameters, 0, "&s", &group);
    g_variant_get_child(parameters, 1, "&s", &key);
    if (std::string_view(group) != kAppearance || std::string_view(key) != kColorScheme) return;
    setDark(isDarkScheme(parameters, 2));
}

void LinuxAppearance::Portal::ask() {
    if (std::exchange(isAsking_, true)) return;
    question_ = bus_.call({.name = kPortalName,
                           .path = kPortalPath,
                           .interface = kSettings,
                           .method = "ReadOne",
                           .parameters = g_variant_new("(ss)", kAppearance, kColorScheme),
                           .answerType = G_VARIANT_TYPE("(v)")},
                          [this](GVariant* answer, const GError* error) {
                              isAsking_ = false;
                              if (answer != nullptr) {
                                  setDark(isDarkScheme(answer, 0));
                              } else if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD)) {
                                  askOldPortal();
                              }
                          });
}

// For portals older than version 2 of the interface, which lack `ReadOne`.
void LinuxAppearance::Portal::askOldPortal() {
    isAsking_ = true;
    question_ = bus_.call({.name = kPortalName,
                           .path = kPortalPath,
                           .interface = kSettings,
                           .method = "Read",
                           .parameters = g_variant_new("(ss)", kAppearance, kColorScheme),
                           .answerType = G_VARIANT_TYPE("(v)")},
                          [this](GVariant* answer, const GError*) {
                              isAsking_ = false;
                              if (answer != nullptr) setDark(isDarkScheme(answer, 0));
                          });
}

void LinuxAppearance::Portal::setDark(bool isDark) {
    if (std::exchange(isDark_, isDark) != isDark) observers_.tell();
}

LinuxAppearance::LinuxAppearance(BusConnection& sessionBus) : portal_(std::make_unique<Portal>(sessionBus)) {}

LinuxAppearance::~LinuxAppearance() = default;

bool LinuxAppearance::isDark() const {
    return portal_->isDark();
}

Cancellation LinuxAppearance::onDidChange(std::function<void()> observer) {
    return portal_->observers().add(std::move(observer));
}

}  // namespace norvane
