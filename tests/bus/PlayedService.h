#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "BusPeer.h"
#include "platform/linux/GObjectPointer.h"
#include "platform/linux/WellKnownNames.h"
#include "platform/Task.h"
#include "PrivateBus.h"

namespace norvane {

// Somebody who owns a name on the bus and answers each call as the test says, from the main loop. Values are
// in the text form of GVariant, and need not be what anybody expects.
class PlayedService {
 public:
    struct Call {
        std::string path;
        std::string interface;
        std::string method;
        std::string arguments;
        // Whether the user may be asked for a password.
        bool mayAskUser = false;
    };
    struct Answer {
        // A tuple.
        std::string values = "()";
        // The name of an error; then the values do not count.
        std::string error{};
        std::string words = "No";
        // It does not answer, until it is told to go on.
        bool isLater = false;
    };
    using Answering = std::function<Answer(const Call&)>;

    // It is there when this has been constructed, and gone when it has been destroyed.
    PlayedService(const PrivateBus& bus, const char* name, Answering answering)
        : name_(name), peer_(bus.address()) {
        state_->connection = peer_.connection();
        state_->answering = std::move(answering);
        g_dbus_connection_add_filter(
            peer_.connection(), received, new std::shared_ptr(state_),
            [](gpointer state) { delete static_cast<std::shared_ptr<State>*>(state); });
        EXPECT_TRUE(peer_.askBus("RequestName", g_variant_new("(su)", name, 0)));
    }
    ~PlayedService() {
        state_->connection = nullptr;
        if (g_dbus_connection_is_closed(peer_.connection())) return;
        EXPECT_TRUE(peer_.askBus("ReleaseName", g_variant_new("(s)", name_)));
    }

    const std::vector<Call>& calls() const { return state_->calls; }
    std::vector<std::string> argumentsOf(const std::string& method) const {
        std::vector<std::string> found;
        for (const Call& call : calls()) {
            if (call.method == method) found.push_back(call.arguments);
        }
        return found;
    }
    std::size_t count(const std::string& method) const { return argumentsOf(method).size(); }
    // Asks the test again about all calls that have no answer.
    void goOn() {
        for (const Message& message : std::exchange(state_->waiting, {}))
            state_->take(message);
    }
    // Heard before whatever anybody sends from now on.
    void emit(const char* path, const char* interface, const char* signal, const std::string& values) const {
        g_dbus_connection_emit_signal(peer_.connection(), nullptr, path, interface, signal, parsed(values),
                                      nullptr);
        EXPECT_TRUE(peer_.hasOwner(name_)) << "the bus has both then";
    }
    // Of a property, with its values and the names of those that are to be asked for anew.
    void emitChange(const char* path, const std::string& interface, const std::string& values,
                    const std::string& outdated = "@as []") const {
        emit(path, kPropertiesInterface, "PropertiesChanged",
             "('" + interface + "', " + values + ", " + outdated + ')');
    }

    static GVariant* parsed(const std::string& text) {
        GVariant* const value = g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, nullptr);
        EXPECT_NE(value, nullptr) << text;
        return value;
    }
    static std::string printed(GVariant* value) {
        const std::unique_ptr<gchar, decltype(&g_free)> text(g_variant_print(value, FALSE), &g_free);
        return text.get();
    }

 private:
    using Message = std::shared_ptr<GDBusMessage>;
    struct State {
        GDBusConnection* connection = nullptr;  // null once the service is gone
        Answering answering;
        std::vector<Call> calls;
        std::vector<Message> waiting;

        void take(const Message& message) {
            if (connection == nullptr) return;
            const Answer answer = answering(callIn(message.get()));
            if (answer.isLater) return waiting.push_back(message);
            const GObjectPointer<GDBusMessage> reply(
                answer.error.empty() ? g_dbus_message_new_method_reply(message.get())
                                     : g_dbus_message_new_method_error_literal(
                                           message.get(), answer.error.c_str(), answer.words.c_str()));
            if (answer.error.empty()) g_dbus_message_set_body(reply.get(), parsed(answer.values));
            // Fails where the bus has gone.
            g_dbus_connection_send_message(connection, reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                           nullptr);
        }
    };

    static Call callIn(GDBusMessage* message) {
        const auto flags = g_dbus_message_get_flags(message);
        GVariant* const body = g_dbus_message_get_body(message);
        return {.path = g_dbus_message_get_path(message),
                .interface = g_dbus_message_get_interface(message),
                .method = g_dbus_message_get_member(message),
                .arguments = body != nullptr ? printed(body) : "()",
                .mayAskUser = (flags & G_DBUS_MESSAGE_FLAGS_ALLOW_INTERACTIVE_AUTHORIZATION) != 0};
    }
    // On a thread of GLib's.
    static GDBusMessage* received(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                                  gpointer own) {
        const bool isCall = g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
        if (isIncoming == FALSE || !isCall) return message;
        const auto run = [](gpointer task) -> gboolean {
            (*static_cast<Task*>(task))();
            return G_SOURCE_REMOVE;
        };
        auto* const task = new Task(
            [state = *static_cast<std::shared_ptr<State>*>(own), call = Message(message, g_object_unref)] {
                state->calls.push_back(callIn(call.get()));
                state->take(call);
            });
        g_idle_add_full(G_PRIORITY_DEFAULT, run, task,
                        [](gpointer taken) { delete static_cast<Task*>(taken); });
        return nullptr;
    }

    const char* const name_;
    BusPeer peer_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace norvane
