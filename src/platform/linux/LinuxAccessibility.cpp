#include "platform/linux/LinuxAccessibility.h"

#include <string_view>
#include <utility>

#include "platform/linux/GVariantPointer.h"
#include "platform/linux/WellKnownNames.h"

namespace norvane {
namespace {

constexpr const char* kBusName = "org.a11y.Bus";
constexpr const char* kStatusPath = "/org/a11y/bus";
constexpr const char* kBusInterface = "org.a11y.Bus";
constexpr const char* kStatus = "org.a11y.Status";
constexpr const char* kIsEnabled = "IsEnabled";

// Somebody waits for what we have to say.
constexpr BusConnection::Pace kPace{.firstAttempt = std::chrono::nanoseconds(0)};

}  // namespace

LinuxAccessibility::LinuxAccessibility(BusConnection& sessionBus, MainQueue& mainQueue,
                                       const MonotonicClock& clock, AccessibleSurfaces& surfaces,
                                       std::function<double()> scale)
    : sessionBus_(sessionBus),
      mainQueue_(mainQueue),
      clock_(clock),
      surfaces_(surfaces),
      scale_(std::move(scale)) {
    owner_ = sessionBus_.onOwnerChange(kBusName, [this](bool hasOwner) {
        // Another one has another bus.
        know(false);
        if (hasOwner) ask();
    });
    changes_ = sessionBus_.onSignal({.sender = kBusName,
                                     .path = kStatusPath,
                                     .interface = kPropertiesInterface,
                                     .member = "PropertiesChanged",
                                     .firstArgument = kStatus},
                                    [this](GVariant* parameters) { changed(parameters); });
    const auto follow = [this](BusConnection::State state) {
        if (state == BusConnection::State::connected) ask();
        if (state == BusConnection::State::down) know(false);
    };
    connection_ = sessionBus_.onStateChange(follow);
    follow(sessionBus_.state());
}

void LinuxAccessibility::ask() {
    question_ = sessionBus_.call({.name = kBusName,
                                  .path = kStatusPath,
                                  .interface = kPropertiesInterface,
                                  .method = "Get",
                                  .parameters = g_variant_new("(ss)", kStatus, kIsEnabled),
                                  .answerType = G_VARIANT_TYPE("(v)"),
                                  .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                                 [this](GVariant* answer, const GError*) {
                                     if (answer == nullptr) return know(false);
                                     GVariant* packed = nullptr;
                                     g_variant_get(answer, "(v)", &packed);
                                     const GVariantPointer value(packed);
                                     const bool isFlag = g_variant_is_of_type(packed, G_VARIANT_TYPE_BOOLEAN);
                                     know(isFlag && g_variant_get_boolean(packed));
                                 });
}

void LinuxAccessibility::changed(GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)"))) return;
    const GVariantPointer values(g_variant_get_child_value(parameters, 1));
    gboolean isEnabled = FALSE;
    if (g_variant_lookup(values.get(), kIsEnabled, "b", &isEnabled)) {
        question_.cancel();  // answered by this
        know(isEnabled != FALSE);
    } else {
        ask();
    }
}

void LinuxAccessibility::know(bool isEnabled) {
    if (!isEnabled) {
        close();
    } else if (!bus_) {
        askForBus();
    }
}

void LinuxAccessibility::askForBus() {
    addressQuestion_ = sessionBus_.call({.name = kBusName,
                                         .path = kStatusPath,
                                         .interface = kBusInterface,
                                         .method = "GetAddress",
                                         .answerType = G_VARIANT_TYPE("(s)"),
                                         .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                                        [this](GVariant* answer, const GError*) {
                                            if (answer == nullptr) return;
                                            const gchar* address = nullptr;
                                            g_variant_get(answer, "(&s)", &address);
                                            open(address);
                                        });
}

void LinuxAccessibility::open(const std::string& address) {
    if (bus_) return;
    bus_ = std::make_unique<BusConnection>(mainQueue_, address, kPace);
    application_ = std::make_unique<AtspiApplication>(*bus_, mainQueue_, clock_, surfaces_, scale_);
}

void LinuxAccessibility::close() {
    addressQuestion_.cancel();
    application_.reset();
    bus_.reset();
}

}  // namespace norvane
