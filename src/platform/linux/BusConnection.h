#pragma once

#include <gio/gio.h>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Cancellation.h"
#include "platform/MainQueue.h"

namespace norvane {

// A connection of our own to a D-Bus bus, rather than the one that GLib shares: that one ends the process
// when the bus goes away, and would start a bus where there is none. It is made some time after the
// construction, since it starts threads of GLib and must not take the processor from the first picture. When
// it is lost, or cannot be made, it is tried again, ever more seldom.
//
// Nothing here waits: every message is asynchronous, and every function that is handed in is called on the
// main thread, from the main loop, never from within the call that it was handed to. Main thread only, the
// one that runs GLib's default main context. The connection outlives its users.
class BusConnection {
 public:
    struct Pace {
        // From the construction to the first attempt.
        std::chrono::nanoseconds firstAttempt = std::chrono::milliseconds(200);
        // From a failure to the next attempt; each further pause is twice as long.
        std::chrono::nanoseconds firstPause = std::chrono::seconds(1);
        std::chrono::nanoseconds longestPause = std::chrono::minutes(5);
    };

    // What a method call has by default to be answered.
    static constexpr std::chrono::milliseconds kUsualLimit = std::chrono::seconds(25);

    // Where nobody said otherwise: the buses of this process; empty where none is there.
    static std::string sessionAddress();
    static std::string systemAddress();

    // The address is D-Bus' own kind; an empty one stands for no bus. What leads off this machine is not
    // used, nor is what would start a bus.
    BusConnection(MainQueue& mainQueue, std::string address);
    BusConnection(MainQueue& mainQueue, std::string address, const Pace& pace);
    ~BusConnection();
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;

    enum class State {
        // The first attempt has not come to an end.
        starting,
        connected,
        // There is no bus, for now or for ever.
        down,
    };
    State state() const;
    // The name that the bus has given to the connection of now; empty without one.
    std::string uniqueName() const;
    // Told of every change, the first one always after the construction has returned.
    [[nodiscard]] Cancellation onStateChange(std::function<void(State)> observer);

    // The texts are literals, or live until the call is answered or cancelled.
    struct Call {
        const char* name;
        const char* path;
        const char* interface;
        const char* method;
        // A tuple, which the call takes over if it is floating; null for none.
        GVariant* parameters = nullptr;
        // An answer of another type is an error; null takes any.
        const GVariantType* answerType = nullptr;
        GDBusCallFlags flags = G_DBUS_CALL_FLAGS_NONE;
        // From now on; what is spent on connecting counts. Without one, a service may take for ever, as long
        // as it is there.
        std::optional<std::chrono::milliseconds> limit = kUsualLimit;
    };
    // Either an answer or an error, valid until the function returns.
    using Answered = std::function<void(GVariant* answer, const GError* error)>;
    // Calls the method. Without a connection that waits for the attempt under way, or starts one. The
    // function is called once, unless the returned value was cancelled or destroyed first; the call itself is
    // not taken back then.
    [[nodiscard]] Cancellation call(const Call& call, Answered answered);

    // The texts are literals; null ones stand for any.
    struct Signal {
        const char* sender;
        const char* path;
        const char* interface;
        const char* member;
        const char* firstArgument = nullptr;
    };
    // Follows a signal over every connection that is yet to come. A signal that is sent while there is none
    // is missed: on `connected` the state must be asked for anew.
    [[nodiscard]] Cancellation onSignal(const Signal& signal,
                                        std::function<void(GVariant* parameters)> received);
    // Told whenever the name came, went or passed to another owner.
    [[nodiscard]] Cancellation onOwnerChange(const char* name, std::function<void(bool hasOwner)> changed);

    // Something of ours that others on the bus can call: one interface at a path.
    struct Object {
        // A literal.
        const char* path;
        // Introspection data in XML, with this interface alone.
        const char* description;
        // Answers a call of a method that the description names, with arguments of the types that it names:
        // a tuple of the results. Null where there is no answer to these arguments: the caller gets an error.
        std::function<GVariant*(std::string_view method, GVariant* arguments)> called;
        // The value of a property that the description names. Null for none at the moment.
        std::function<GVariant*(std::string_view property)> read;
    };
    // The object is there over every connection that is yet to come. Its functions may end it.
    [[nodiscard]] Cancellation exportObject(Object object);

    // Objects of ours that come and go right below a path, each with some of the interfaces of one
    // description. Names are the last parts of their paths, as they stand in the messages: any may be asked
    // for.
    struct Family {
        // A literal.
        const char* path;
        // Introspection data in XML, with all interfaces that any of them has.
        const char* description;
        // Those of the object of that name; none where there is no such object.
        std::function<std::vector<std::string_view>(std::string_view name)> interfaces;
        // As with a single object, for an interface that the object has.
        std::function<GVariant*(std::string_view name, std::string_view interface, std::string_view method,
                                GVariant* arguments)>
            called;
        std::function<GVariant*(std::string_view name, std::string_view interface, std::string_view property)>
            read;
        // Takes a value for a property that the description says can be written. False where it is refused.
        std::function<bool(std::string_view name, std::string_view interface, std::string_view property,
                           GVariant* value)>
            write;
    };
    // The family is there over every connection that is yet to come. Its functions may end it.
    [[nodiscard]] Cancellation exportFamily(Family family);

    // Sends a signal of such an object to whoever follows it. The parameters are a tuple, which is taken over
    // if it is floating; null for none. Without a connection there is nobody to send it to.
    void emit(const char* path, const char* interface, const char* signal, GVariant* parameters = nullptr);

 private:
    class Link;

    std::shared_ptr<Link> link_;
};

}  // namespace norvane
