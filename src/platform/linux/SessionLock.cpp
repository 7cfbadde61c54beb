#include "platform/linux/SessionLock.h"

#include <unistd.h>
#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/linux/GVariantPointer.h"
#include "platform/linux/WellKnownNames.h"

namespace norvane {
namespace {

struct LockerPlace {
    // Also its interface.
    const char* name;
    // In the order in which they are asked; null for no other one.
    std::array<const char*, 2> paths;
};

constexpr std::array<LockerPlace, 5> kPlaces{
    LockerPlace{"org.freedesktop.ScreenSaver", {"/org/freedesktop/ScreenSaver", "/ScreenSaver"}},
    LockerPlace{"org.gnome.ScreenSaver", {"/org/gnome/ScreenSaver", nullptr}},
    LockerPlace{"org.cinnamon.ScreenSaver", {"/org/cinnamon/ScreenSaver", nullptr}},
    LockerPlace{"org.mate.ScreenSaver", {"/org/mate/ScreenSaver", nullptr}},
    LockerPlace{"org.xfce.ScreenSaver", {"/org/xfce/ScreenSaver", nullptr}}};

constexpr const char* kLogin = "org.freedesktop.login1";
constexpr const char* kLoginPath = "/org/freedesktop/login1";
constexpr const char* kManager = "org.freedesktop.login1.Manager";
constexpr const char* kSession = "org.freedesktop.login1.Session";
constexpr const char* kLockedHint = "LockedHint";

// False for whatever is no boolean.
bool isTrue(GVariant* value) {
    return g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value);
}

}  // namespace

SessionLock::SessionLock(BusConnection& sessionBus, BusConnection& systemBus)
    : sessionBus_(sessionBus), systemBus_(systemBus) {
    static_assert(kPlaces.size() == kLockers);
    for (std::size_t locker = 0; locker < kLockers; ++locker) {
        const auto& [name, paths] = kPlaces[locker];
        // A locker is one, whichever of its paths it speaks from.
        for (std::size_t path = 0; path < paths.size() && paths[path] != nullptr; ++path) {
            lockers_[locker].signals[path] = sessionBus_.onSignal(
                {.sender = name, .path = paths[path], .interface = name, .member = "ActiveChanged"},
                [this, locker](GVariant* parameters) {
                    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(b)"))) return;
                    const GVariantPointer isActive(g_variant_get_child_value(parameters, 0));
                    lockers_[locker].question.cancel();  // answered by this
                    know(locker, isTrue(isActive.get()));
                });
        }
        lockers_[locker].owner = sessionBus_.onOwnerChange(name, [this, locker](bool hasOwner) {
            lockers_[locker].question.cancel();
            know(locker, false);
            if (hasOwner) askLocker(locker, 0);
        });
    }
    const auto followLockers = [this](BusConnection::State state) {
        for (std::size_t locker = 0; locker < kLockers; ++locker) {
            if (state == BusConnection::State::connected) askLocker(locker, 0);
            if (state == BusConnection::State::down) {
                lockers_[locker].question.cancel();
                know(locker, false);
            }
        }
    };
    sessionBusState_ = sessionBus_.onStateChange(followLockers);
    followLockers(sessionBus_.state());

    manager_ = systemBus_.onOwnerChange(kLogin, [this](bool hasOwner) {
        loseSession();
        if (hasOwner) findSession();
    });
    const auto followSession = [this](BusConnection::State state) {
        if (state == BusConnection::State::connected) findSession();
        if (state == BusConnection::State::down) loseSession();
    };
    systemBusState_ = systemBus_.onStateChange(followSession);
    followSession(systemBus_.state());
}

SessionLock::~SessionLock() = default;

void SessionLock::askLocker(std::size_t locker, std::size_t path) {
    const auto& [name, paths] = kPlaces[locker];
    lockers_[locker].question =
        sessionBus_.call({.name = name,
                          .path = paths[path],
                          .interface = name,
                          .method = "GetActive",
                          .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                         [this, locker, path](GVariant* answer, const GError*) {
                             const auto& others = kPlaces[locker].paths;
                             if (answer != nullptr && g_variant_n_children(answer) == 1) {
                                 const GVariantPointer isActive(g_variant_get_child_value(answer, 0));
                                 know(locker, isTrue(isActive.get()));
                             } else if (path + 1 < others.size() && others[path + 1] != nullptr) {
                                 askLocker(locker, path + 1);
                             }
                         });
}

void SessionLock::know(std::size_t locker, bool isActive) {
    lockers_[locker].isActive = isActive;
    update();
}

// The session of this process or else, for one that the user's own service manager has started, the one that
// the user looks at.
void SessionLock::findSession() {
    question_ = systemBus_.call({.name = kLogin,
                                 .path = kLoginPath,
                                 .interface = kManager,
                                 .method = "GetSession",
                                 .parameters = g_variant_new("(s)", "auto"),
                                 .answerType = G_VARIANT_TYPE("(o)"),
                                 .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                                [this](GVariant* answer, const GError*) {
                                    if (answer == nullptr) {
                                        findSessionOfProcess();
                                        return;
                                    }
                                    const gchar* path = nullptr;
                                    g_variant_get(answer, "(&o)", &path);
                                    follow(path);
                                });
}

// For managers that know sessions by their names alone.
void SessionLock::findSessionOfProcess() {
    question_ = systemBus_.call({.name = kLogin,
                                 .path = kLoginPath,
                                 .interface = kManager,
                                 .method = "GetSessionByPID",
                                 .parameters = g_variant_new("(u)", static_cast<std::uint32_t>(getpid())),
                                 .answerType = G_VARIANT_TYPE("(o)"),
                                 .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                                [this](GVariant* answer, const GError*) {
                                    if (answer == nullptr) return;
                                    const gchar* path = nullptr;
                                    g_variant_get(answer, "(&o)", &path);
                                    follow(path);
                                });
}

void SessionLock::follow(std::string path) {
    properties_.cancel();  // it holds on to the path
    session_ = std::move(path);
    properties_ = systemBus_.onSignal({.sender = kLogin,
                                       .path = session_.c_str(),
                                       .interface = kPropertiesInterface,
                                       .member = "PropertiesChanged",
                                       .firstArgument = kSession},
                                      [this](GVariant* parameters) { hintChanged(parameters); });
    askHint();
}

void SessionLock::askHint() {
    question_ = systemBus_.call({.name = kLogin,
                                 .path = session_.c_str(),
                                 .interface = kPropertiesInterface,
                                 .method = "Get",
                                 .parameters = g_variant_new("(ss)", kSession, kLockedHint),
                                 .answerType = G_VARIANT_TYPE("(v)"),
                                 .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                                [this](GVariant* answer, const GError*) {
                                    if (answer == nullptr) {
                                        know(false);
                                        return;
                                    }
                                    const GVariantPointer boxed(g_variant_get_child_value(answer, 0));
                                    const GVariantPointer value(g_variant_get_variant(boxed.get()));
                                    know(isTrue(value.get()));
                                });
}

void SessionLock::hintChanged(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)"))) return;
    const GVariantPointer changed(g_variant_get_child_value(parameters, 1));
    const GVariantPointer value(g_variant_lookup_value(changed.get(), kLockedHint, nullptr));
    if (value) {
        question_.cancel();  // answered by this
        know(isTrue(value.get()));
        return;
    }
    const GVariantPointer invalidated(g_variant_get_child_value(parameters, 2));
    const std::unique_ptr<const gchar*, decltype(&g_free)> names(
        g_variant_get_strv(invalidated.get(), nullptr), &g_free);
    if (g_strv_contains(names.get(), kLockedHint)) askHint();
}

void SessionLock::loseSession() {
    question_.cancel();
    properties_.cancel();
    know(false);
}

void SessionLock::know(bool isHinted) {
    isHinted_ = isHinted;
    update();
}

void SessionLock::update() {
    const bool isLocked = isHinted_ || std::any_of(lockers_.begin(), lockers_.end(),
                                                   [](const Locker& locker) { return locker.isActive; });
    if (std::exchange(isLocked_, isLocked) != isLocked) changed_.tell();
}

}  // namespace norvane
