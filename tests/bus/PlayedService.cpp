#include "PlayedService.h"

#include <gtest/gtest.h>

#include <utility>

#include "platform/linux/GObjectPointer.h"

namespace norvane {
namespace {

PlayedService::Call callIn(GDBusMessage* message) {
    const auto flags = g_dbus_message_get_flags(message);
    GVariant* const body = g_dbus_message_get_body(message);
    return {.path = g_dbus_message_get_path(message),
            .interface = g_dbus_message_get_interface(message),
            .method = g_dbus_message_get_member(message),
            .arguments = body != nullptr ? PlayedService::printed(body) : "()",
            .mayAskUser = (flags & G_DBUS_MESSAGE_FLAGS_ALLOW_INTERACTIVE_AUTHORIZATION) != 0};
}

}  // namespace

PlayedService::PlayedService(const PrivateBus& bus, const char* name, Answering answering)
    : name_(name), peer_(bus.address()) {
    state_->connection = peer_.connection();
    state_->answering = std::move(answering);
    g_dbus_connection_add_filter(peer_.connection(), received, new std::shared_ptr<State>(state_),
                                 [](gpointer state) { delete static_cast<std::shared_ptr<State>*>(state); });
    peer_.requestName(name);
}

PlayedService::~PlayedService() {
    state_->connection = nullptr;
    if (!g_dbus_connection_is_closed(peer_.connection())) peer_.releaseName(name_);
}

std::vector<std::string> PlayedService::argumentsOf(const std::string& method) const {
    std::vector<std::string> found;
    for (const Call& call : calls()) {
        if (call.method == method) found.push_back(call.arguments);
    }
    return found;
}

void PlayedService::goOn() {
    for (const Message& message : std::exchange(state_->waiting, {}))
        state_->take(message);
}

void PlayedService::emit(const char* path, const char* interface, const char* signal,
                         const std::string& values) const {
    g_dbus_connection_emit_signal(peer_.connection(), nullptr, path, interface, signal, parsed(values),
                                  nullptr);
    EXPECT_TRUE(peer_.hasOwner(name_)) << "the bus has both then";
}

void PlayedService::emitChange(const char* path, const char* interface, const std::string& values,
                               const std::string& outdated) const {
    emit(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
         "('" + std::string(interface) + "', " + values + ", " + outdated + ')');
}

GVariant* PlayedService::parsed(const std::string& text) {
    GVariant* const value = g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, nullptr);
    EXPECT_NE(value, nullptr) << text;
    return value;
}

std::string PlayedService::printed(GVariant* value) {
    const std::unique_ptr<gchar, decltype(&g_free)> text(g_variant_print(value, FALSE), &g_free);
    return text.get();
}

void PlayedService::State::take(const Message& message) {
    if (connection == nullptr) return;
    const Answer answer = answering(callIn(message.get()));
    if (answer.isLater) {
        waiting.push_back(message);
        return;
    }
    const GObjectPointer<GDBusMessage> reply(
        answer.error.empty() ? g_dbus_message_new_method_reply(message.get())
                             : g_dbus_message_new_method_error_literal(message.get(), answer.error.c_str(),
                                                                       answer.words.c_str()));
    if (answer.error.empty()) g_dbus_message_set_body(reply.get(), parsed(answer.values));
    // Fails where the bus has gone.
    g_dbus_connection_send_message(connection, reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
}

// On a thread of GLib's.
GDBusMessage* PlayedService::received(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                                      gpointer state) {
    const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
    if (isIncoming == FALSE || !isCall) return message;
    using Task = std::function<void()>;
    auto* const task = new Task(
        [state = *static_cast<std::shared_ptr<State>*>(state), call = Message(message, g_object_unref)] {
            state->calls.push_back(callIn(call.get()));
            state->take(call);
        });
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        [](gpointer taken) -> gboolean {
            (*static_cast<Task*>(taken))();
            return G_SOURCE_REMOVE;
        },
        task, [](gpointer taken) { delete static_cast<Task*>(taken); });
    return nullptr;
}

}  // namespace norvane
