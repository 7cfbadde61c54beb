#include "BusPeer.h"

#include <gtest/gtest.h>

#include "linux/RunLoop.h"
#include "platform/linux/WellKnownNames.h"

namespace norvane {

BusPeer::BusPeer(const std::string& address) {
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_ = g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    EXPECT_NE(connection_, nullptr);
}

BusPeer::~BusPeer() {
    g_dbus_connection_close_sync(connection_, nullptr, nullptr);
    g_object_unref(connection_);
}

GVariantPointer BusPeer::call(const char* name, const char* path, const char* interface, const char* method,
                              GVariant* parameters) const {
    return GVariantPointer(g_dbus_connection_call_sync(connection_, name, path, interface, method, parameters,
                                                       nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr,
                                                       nullptr));
}

GVariantPointer BusPeer::askBus(const char* method, GVariant* parameters) const {
    return call(kBusDriver, kBusDriverPath, kBusDriver, method, parameters);
}

bool BusPeer::hasOwner(const char* name) const {
    const auto answer = askBus("NameHasOwner", g_variant_new("(s)", name));
    gboolean isOwned = FALSE;
    if (answer) g_variant_get(answer.get(), "(b)", &isOwned);
    return isOwned != FALSE;
}

bool BusPeer::comesToHaveOwner(const char* name, bool has) const {
    return runUntil([&] { return hasOwner(name) == has; });
}

}  // namespace norvane
