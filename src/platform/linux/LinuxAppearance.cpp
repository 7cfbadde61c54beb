#include "platform/linux/LinuxAppearance.h"

#include <gio/gio.h>
#include <unistd.h>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "platform/Observers.h"

namespace norvane {
namespace {

constexpr const char* kPortalName = "org.freedesktop.portal.Desktop";
constexpr const char* kPortalPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kColorScheme = "color-scheme";
constexpr std::uint32_t kDarkScheme = 1;

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(GError* error) const { g_error_free(error); }
};
template <typename Type>
using Owned = std::unique_ptr<Type, Unref>;

// The colour scheme in an answer or a signal. `Read` packs the variant into another one.
bool isDarkScheme(Owned<GVariant> value) {
    while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32) &&
           g_variant_get_uint32(value.get()) == kDarkScheme;
}

}  // namespace

// The conversation with the portal. Main thread only. What GLib calls back holds a weak pointer to it, so
// that an answer may come after it is gone.
class LinuxAppearance::Portal : public std::enable_shared_from_this<Portal> {
 public:
    explicit Portal(std::string busAddress) : busAddress_(std::move(busAddress)) {}
    ~Portal();
    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    void connect();
    bool isDark() const { return isDark_; }
    Observers<>& observers() { return observers_; }

 private:
    using Weak = std::weak_ptr<Portal>;
    gpointer newWeak() { return new Weak(weak_from_this()); }
    static void deleteWeak(gpointer weak) { delete static_cast<Weak*>(weak); }
    static std::shared_ptr<Portal> takeWeak(gpointer weak) {
        return std::unique_ptr<Weak>(static_cast<Weak*>(weak))->lock();
    }

    static void connected(GObject*, GAsyncResult* result, gpointer weak);
    static void portalStarted(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                              GVariant* parameters, gpointer weak);
    static void settingChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                               GVariant* parameters, gpointer weak);
    static void readOneAnswered(GObject* connection, GAsyncResult* result, gpointer weak);
    static void readAnswered(GObject* connection, GAsyncResult* result, gpointer weak);

    void follow();
    void ask(const char* method, GAsyncReadyCallback answered);
    void setDark(bool isDark);

    const std::string busAddress_;
    const Owned<GCancellable> cancellable_{g_cancellable_new()};
    Owned<GDBusConnection> connection_;
    guint settingSubscription_ = 0;
    guint ownerSubscription_ = 0;
    bool isAsking_ = false;
    bool isDark_ = false;
    Observers<> observers_;
};

LinuxAppearance::Portal::~Portal() {
    g_cancellable_cancel(cancellable_.get());
    if (!connection_) return;
    g_dbus_connection_signal_unsubscribe(connection_.get(), settingSubscription_);
    g_dbus_connection_signal_unsubscribe(connection_.get(), ownerSubscription_);
    g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
}

// A connection of our own rather than the one that GLib shares: that one ends the process when the bus goes
// away, and would start a bus where there is none.
void LinuxAppearance::Portal::connect() {
    if (busAddress_.empty()) return;
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(busAddress_.c_str(), flags, nullptr, cancellable_.get(), connected,
                                      newWeak());
}

void LinuxAppearance::Portal::connected(GObject*, GAsyncResult* result, gpointer weak) {
    Owned<GDBusConnection> connection(g_dbus_connection_new_for_address_finish(result, nullptr));
    const auto portal = takeWeak(weak);
    if (!connection) return;
    g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    if (!portal) {
        g_dbus_connection_close(connection.get(), nullptr, nullptr, nullptr);
        return;
    }
    portal->connection_ = std::move(connection);
    portal->follow();
    portal->ask("ReadOne", readOneAnswered);
}

void LinuxAppearance::Portal::follow() {
    settingSubscription_ = g_dbus_connection_signal_subscribe(
        connection_.get(), kPortalName, kSettings, "SettingChanged", kPortalPath, kAppearance,
        G_DBUS_SIGNAL_FLAGS_NONE, settingChanged, newWeak(), deleteWeak);
    ownerSubscription_ = g_dbus_connection_signal_subscribe(
        connection_.get(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
        "/org/freedesktop/DBus", kPortalName, G_DBUS_SIGNAL_FLAGS_NONE, portalStarted, newWeak(), deleteWeak);
}

// The portal may come, or come back, long after this process.
void LinuxAppearance::Portal::portalStarted(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                            const gchar*, GVariant* parameters, gpointer weak) {
    const auto portal = static_cast<Weak*>(weak)->lock();
    if (!portal || !g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sss)"))) return;
    const gchar* owner = nullptr;
    g_variant_get_child(parameters, 2, "&s", &owner);
    if (*owner != '\0') portal->ask("ReadOne", readOneAnswered);
}

void LinuxAppearance::Portal::settingChanged(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                             const gchar*, GVariant* parameters, gpointer weak) {
    const auto portal = static_cast<Weak*>(weak)->lock();
    if (!portal || !g_variant_is_of_type(parameters, G_VARIANT_TYPE("(ssv)"))) return;
    const gchar* group = nullptr;
    const gchar* key = nullptr;
    g_variant_get_child(parameters, 0, "&s", &group);
    g_variant_get_child(parameters, 1, "&s", &key);
    if (std::string_view(group) != kAppearance || std::string_view(key) != kColorScheme) return;
    portal->setDark(isDarkScheme(Owned<GVariant>(g_variant_get_child_value(parameters, 2))));
}

// `Read` is for portals older than version 2 of the interface, which lack `ReadOne`.
void LinuxAppearance::Portal::ask(const char* method, GAsyncReadyCallback answered) {
    if (std::exchange(isAsking_, true)) return;
    constexpr int kUsualTimeout = -1;
    g_dbus_connection_call(connection_.get(), kPortalName, kPortalPath, kSettings, method,
                           g_variant_new("(ss)", kAppearance, kColorScheme), G_VARIANT_TYPE("(v)"),
                           G_DBUS_CALL_FLAGS_NONE, kUsualTimeout, cancellable_.get(), answered, newWeak());
}

void LinuxAppearance::Portal::readOneAnswered(GObject* connection, GAsyncResult* result, gpointer weak) {
    GError* failure = nullptr;
    const Owned<GVariant> answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure));
    const Owned<GError> error(failure);
    const auto portal = takeWeak(weak);
    if (!portal) return;
    portal->isAsking_ = false;
    if (answer) {
        portal->setDark(isDarkScheme(Owned<GVariant>(g_variant_get_child_value(answer.get(), 0))));
    } else if (g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD)) {
        portal->ask("Read", readAnswered);
    }
}

void LinuxAppearance::Portal::readAnswered(GObject* connection, GAsyncResult* result, gpointer weak) {
    const Owned<GVariant> answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, nullptr));
    const auto portal = takeWeak(weak);
    if (!portal) return;
    portal->isAsking_ = false;
    if (answer) portal->setDark(isDarkScheme(Owned<GVariant>(g_variant_get_child_value(answer.get(), 0))));
}

void LinuxAppearance::Portal::setDark(bool isDark) {
    if (std::exchange(isDark_, isDark) != isDark) observers_.tell();
}

LinuxAppearance::LinuxAppearance(MainQueue& mainQueue, std::string busAddress, std::chrono::nanoseconds delay)
    : portal_(std::make_shared<Portal>(std::move(busAddress))),
      start_(mainQueue.after(delay, [portal = portal_] { portal->connect(); })) {}

LinuxAppearance::~LinuxAppearance() = default;

bool LinuxAppearance::isDark() const {
    return portal_->isDark();
}

Cancellation LinuxAppearance::onDidChange(std::function<void()> observer) {
    return portal_->observers().add(std::move(observer));
}

std::string LinuxAppearance::sessionBusAddress() {
    if (const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr)
        return address;
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime != '/') return {};
    const std::string socket = std::string(runtime) + "/bus";
    if (access(socket.c_str(), F_OK) != 0) return {};
    const std::unique_ptr<gchar, decltype(&g_free)> escaped(g_dbus_address_escape_value(socket.c_str()),
                                                            &g_free);
    return std::string("unix:path=") + escaped.get();
}

}  // namespace norvane
