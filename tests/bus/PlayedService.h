#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "BusPeer.h"
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
    PlayedService(const PrivateBus& bus, const char* name, Answering answering);
    ~PlayedService();

    // All calls so far, and the arguments of those of one method.
    const std::vector<Call>& calls() const { return state_->calls; }
    std::vector<std::string> argumentsOf(const std::string& method) const;
    int count(const std::string& method) const { return static_cast<int>(argumentsOf(method).size()); }
    // Asks the test again about all calls that have no answer.
    void goOn();
    // Heard before whatever anybody sends from now on.
    void emit(const char* path, const char* interface, const char* signal, const std::string& values) const;
    // Of a property, with its values and the names of those that are to be asked for anew.
    void emitChange(const char* path, const char* interface, const std::string& values,
                    const std::string& outdated = "@as []") const;

    static GVariant* parsed(const std::string& text);
    static std::string printed(GVariant* value);

 private:
    using Message = std::shared_ptr<GDBusMessage>;
    struct State {
        GDBusConnection* connection = nullptr;  // null once the service is gone
        Answering answering;
        std::vector<Call> calls;
        std::vector<Message> waiting;

        void take(const Message& message);
    };

    static GDBusMessage* received(GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                                  gpointer state);

    const char* const name_;
    BusPeer peer_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace norvane
