#include "platform/linux/NotifierWatch.h"

#include <memory>
#include <utility>

#include "platform/linux/GVariantPointer.h"
#include "platform/linux/WellKnownNames.h"

namespace norvane {
namespace {

// Also its interface.
constexpr const char* kIsHostRegistered = "IsStatusNotifierHostRegistered";

}  // namespace

NotifierWatch::NotifierWatch(BusConnection& sessionBus, std::chrono::milliseconds limit)
    : bus_(sessionBus), limit_(limit) {
    owner_ = bus_.onOwnerChange(kWatcher, [this](bool hasOwner) {
        if (hasOwner) {
            begin();
        } else {
            know(State::absent);
        }
    });
    registered_ = bus_.onSignal({.sender = kWatcher,
                                 .path = kWatcherPath,
                                 .interface = kWatcher,
                                 .member = "StatusNotifierHostRegistered"},
                                [this](GVariant*) { know(State::present); });
    // There may be a further one.
    unregistered_ = bus_.onSignal({.sender = kWatcher,
                                   .path = kWatcherPath,
                                   .interface = kWatcher,
                                   .member = "StatusNotifierHostUnregistered"},
                                  [this](GVariant*) { ask(limit_); });
    properties_ = bus_.onSignal({.sender = kWatcher,
                                 .path = kWatcherPath,
                                 .interface = kPropertiesInterface,
                                 .member = "PropertiesChanged",
                                 .firstArgument = kWatcher},
                                [this](GVariant* parameters) { propertiesChanged(parameters); });
    connection_ = bus_.onStateChange([this](BusConnection::State state) { connectionChanged(state); });
    connectionChanged(bus_.state());
}

void NotifierWatch::connectionChanged(BusConnection::State state) {
    if (state == BusConnection::State::connected) begin();
    if (state == BusConnection::State::down) know(State::absent);
}

// There may be a watcher that was not there before.
void NotifierWatch::begin() {
    ++generation_;
    if (state_ == State::absent) state_ = State::unknown;
    ask(limit_);
    changed_.tell();
}

// Nobody is started for this: a watcher without a panel is of no use.
void NotifierWatch::ask(Limit limit) {
    question_ = bus_.call({.name = kWatcher,
                           .path = kWatcherPath,
                           .interface = kPropertiesInterface,
                           .method = "Get",
                           .parameters = g_variant_new("(ss)", kWatcher, kIsHostRegistered),
                           .answerType = G_VARIANT_TYPE("(v)"),
                           .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START,
                           .limit = limit},
                          [this, limit](GVariant* answer, const GError* error) {
                              if (answer == nullptr) {
                                  // A watcher that is only busy, as at login, is heard whenever it answers.
                                  const bool isLate =
                                      limit && g_error_matches(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT);
                                  if (isLate) ask(std::nullopt);
                                  know(State::absent);
                                  return;
                              }
                              const GVariantPointer boxed(g_variant_get_child_value(answer, 0));
                              const GVariantPointer value(g_variant_get_variant(boxed.get()));
                              learn(value.get());
                          });
}

void NotifierWatch::propertiesChanged(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)"))) return;
    const GVariantPointer changed(g_variant_get_child_value(parameters, 1));
    const GVariantPointer value(g_variant_lookup_value(changed.get(), kIsHostRegistered, nullptr));
    if (value) {
        learn(value.get());
        return;
    }
    const GVariantPointer invalidated(g_variant_get_child_value(parameters, 2));
    const std::unique_ptr<const gchar*, decltype(&g_free)> names(
        g_variant_get_strv(invalidated.get(), nullptr), &g_free);
    if (g_strv_contains(names.get(), kIsHostRegistered)) ask(limit_);
}

void NotifierWatch::learn(GVariant* isHostRegistered) {
    const bool isThere = g_variant_is_of_type(isHostRegistered, G_VARIANT_TYPE_BOOLEAN) &&
                         g_variant_get_boolean(isHostRegistered) != FALSE;
    know(isThere ? State::present : State::absent);
}

void NotifierWatch::know(State state) {
    question_.cancel();  // its answer would be an older one
    if (std::exchange(state_, state) != state) changed_.tell();
}

}  // namespace norvane
