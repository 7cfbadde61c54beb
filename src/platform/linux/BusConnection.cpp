#include "platform/linux/BusConnection.h"

#include <unistd.h>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <map>
#include <string_view>
#include <utility>

#include "platform/linux/BusAddress.h"
#include "platform/linux/BusExport.h"
#include "platform/linux/Deadline.h"
#include "platform/linux/GErrorPointer.h"
#include "platform/linux/GObjectPointer.h"
#include "platform/linux/GVariantPointer.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/WellKnownNames.h"
#include "platform/Observers.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// A bus that takes connections and does not answer them must not be waited for longer than for an answer.
constexpr std::chrono::nanoseconds kConnectionLimit = BusConnection::kUsualLimit;
// A connection that lasted so long was a good one: when it is lost, the pauses begin anew.
constexpr std::chrono::nanoseconds kSteady = 1min;

std::string pathAddress(const std::string& socket) {
    const std::unique_ptr<gchar, decltype(&g_free)> escaped(g_dbus_address_escape_value(socket.c_str()),
                                                            &g_free);
    return std::string("unix:path=") + escaped.get();
}

}  // namespace

// What GLib calls back holds a weak pointer to it, so that an answer may come after it is gone.
class BusConnection::Link : public std::enable_shared_from_this<Link> {
 public:
    Link(MainQueue& mainQueue, const std::string& address, const Pace& pace)
        : mainQueue_(mainQueue),
          address_(g_dbus_is_address(address.c_str()) ? localBusAddress(address) : std::string()),
          pace_(pace),
          pause_(pace.firstPause) {}
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    void start() { attemptAfter(pace_.firstAttempt); }
    State state() const { return state_; }
    Observers<State>& observers() { return observers_; }
    Cancellation call(const Call& call, Answered answered);
    Cancellation onSignal(const Signal& signal, std::function<void(GVariant*)> received);
    Cancellation add(std::shared_ptr<BusExport> exported);
    GDBusConnection* connection() const { return connection_.get(); }
    void emit(const char* path, const char* interface, const char* signal, GVariant* parameters);

 private:
    // Somebody who waits for an answer; without a function nobody does any more.
    struct Asker {
        BusConnection::Answered answered;

        void tell(GVariant* answer, const GError* error) {
            if (const auto function = std::exchange(answered, nullptr)) function(answer, error);
        }
    };

    struct WaitingCall {
        BusConnection::Call call;
        GVariantPointer parameters;
        std::shared_ptr<Asker> asker;
        std::optional<MonotonicInstant> deadline;
        Cancellation limit;
    };

    struct Subscription {
        BusConnection::Signal signal;
        std::function<void(GVariant*)> received;
        // 0 while there is no connection.
        guint number = 0;
    };

    static void connected(GObject*, GAsyncResult* result, gpointer weak);
    static void closed(GDBusConnection* connection, gboolean, GError*, gpointer weak);
    static void answered(GObject* connection, GAsyncResult* result, gpointer asker);
    static void received(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                         GVariant* parameters, gpointer weak);

    using Weak = std::weak_ptr<Link>;

    void attemptAfter(std::chrono::nanoseconds delay);
    void attempt();
    void failed(const GError& error);
    void succeeded(GObjectPointer<GDBusConnection> connection);
    void lose();
    void pauseThenAttempt();
    void setState(State state);
    void send(const Call& call, GVariant* parameters, std::optional<MonotonicInstant> deadline,
              std::shared_ptr<Asker> asker);
    void subscribe(const std::shared_ptr<Subscription>& subscription);
    void unsubscribe(Subscription& subscription);

    MainQueue& mainQueue_;
    const std::string address_;
    const Pace pace_;
    LinuxMonotonicClock clock_;

    State state_ = State::starting;
    Observers<State> observers_;
    GObjectPointer<GDBusConnection> connection_;
    gulong closedHandler_ = 0;
    MonotonicInstant connectedAt_;

    // Not null while an attempt is under way.
    GObjectPointer<GCancellable> attempt_;
    Cancellation attemptLimit_;
    std::chrono::nanoseconds pause_;
    Cancellation nextAttempt_;

    std::map<std::uint64_t, WaitingCall> waiting_;
    std::uint64_t callCount_ = 0;
    std::list<std::shared_ptr<Subscription>> subscriptions_;
    std::list<std::shared_ptr<BusExport>> exports_;
};

BusConnection::Link::~Link() {
    if (attempt_) g_cancellable_cancel(attempt_.get());
    for (const auto& subscription : subscriptions_) {
        unsubscribe(*subscription);
        subscription->received = nullptr;
    }
    for (const auto& exported : exports_)
        exported->leave(connection_.get());
    if (!connection_) return;
    g_signal_handler_disconnect(connection_.get(), closedHandler_);
    g_dbus_connection_close(connection_.get(), nullptr, nullptr, nullptr);
}

void BusConnection::Link::attemptAfter(std::chrono::nanoseconds delay) {
    nextAttempt_ = mainQueue_.after(delay, [weak = weak_from_this()] {
        if (const auto link = weak.lock()) link->attempt();
    });
}

void BusConnection::Link::attempt() {
    if (address_.empty()) {
        const GErrorPointer error(g_error_new_literal(G_IO_ERROR, G_IO_ERROR_NOT_FOUND, "There is no bus"));
        failed(*error);
        return;
    }
    attempt_.reset(g_cancellable_new());
    attemptLimit_ = mainQueue_.after(kConnectionLimit, [weak = weak_from_this()] {
        if (const auto link = weak.lock()) g_cancellable_cancel(link->attempt_.get());
    });
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address_.c_str(), flags, nullptr, attempt_.get(), connected,
                                      new Weak(weak_from_this()));
}

void BusConnection::Link::connected(GObject*, GAsyncResult* result, gpointer weak) {
    GError* failure = nullptr;
    GObjectPointer<GDBusConnection> connection(g_dbus_connection_new_for_address_finish(result, &failure));
    const GErrorPointer error(failure);
    const auto link = std::unique_ptr<Weak>(static_cast<Weak*>(weak))->lock();
    if (connection) g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    if (!link) {
        if (connection) g_dbus_connection_close(connection.get(), nullptr, nullptr, nullptr);
        return;
    }
    link->attempt_.reset();
    link->attemptLimit_.cancel();
    if (connection) {
        link->succeeded(std::move(connection));
    } else if (g_error_matches(error.get(), G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
        const GErrorPointer late(
            g_error_new_literal(G_IO_ERROR, G_IO_ERROR_TIMED_OUT, "The bus does not answer"));
        link->failed(*late);
    } else {
        link->failed(*error);
    }
}

void BusConnection::Link::failed(const GError& error) {
    pauseThenAttempt();
    const auto calls = std::exchange(waiting_, {});
    setState(State::down);
    for (const auto& [number, each] : calls)
        each.asker->tell(nullptr, &error);
}

void BusConnection::Link::succeeded(GObjectPointer<GDBusConnection> connection) {
    connection_ = std::move(connection);
    connectedAt_ = clock_.now();
    closedHandler_ = g_signal_connect_data(
        connection_.get(), "closed", G_CALLBACK(closed), new Weak(weak_from_this()),
        [](gpointer weak, GClosure*) { delete static_cast<Weak*>(weak); }, G_CONNECT_DEFAULT);
    // Before anything is asked, so that no change can fall between an answer and the first signal.
    for (const auto& subscription : subscriptions_)
        subscribe(subscription);
    for (const auto& exported : exports_)
        exported->enter(connection_.get());
    for (auto& [number, each] : std::exchange(waiting_, {})) {
        if (each.asker->answered) send(each.call, each.parameters.get(), each.deadline, each.asker);
    }
    setState(State::connected);
    // It may have gone already, before anybody heard of it.
    if (connection_ && g_dbus_connection_is_closed(connection_.get())) lose();
}

void BusConnection::Link::closed(GDBusConnection* connection, gboolean, GError*, gpointer weak) {
    const auto link = static_cast<Weak*>(weak)->lock();
    if (link && link->connection_.get() == connection) link->lose();
}

void BusConnection::Link::lose() {
    for (const auto& subscription : subscriptions_)
        unsubscribe(*subscription);
    for (const auto& exported : exports_)
        exported->leave(connection_.get());
    g_signal_handler_disconnect(connection_.get(), closedHandler_);
    connection_.reset();
    if (clock_.now() - connectedAt_ >= kSteady) pause_ = pace_.firstPause;
    pauseThenAttempt();
    setState(State::down);
}

void BusConnection::Link::pauseThenAttempt() {
    if (address_.empty()) return;
    attemptAfter(pause_);
    pause_ = std::min(pause_ * 2, pace_.longestPause);
}

void BusConnection::Link::setState(State state) {
    if (std::exchange(state_, state) != state) observers_.tell(state);
}

Cancellation BusConnection::Link::call(const Call& call, Answered answered) {
    GVariantPointer parameters(call.parameters != nullptr ? g_variant_ref_sink(call.parameters) : nullptr);
    const auto asker = std::make_shared<Asker>(Asker{std::move(answered)});
    std::optional<MonotonicInstant> deadline;
    if (call.limit) deadline = deadlineAfter(clock_.now(), *call.limit);
    if (connection_) {
        send(call, parameters.get(), deadline, asker);
    } else {
        const std::uint64_t number = callCount_++;
        const auto end = [weak = weak_from_this(), number] {
            const auto link = weak.lock();
            const auto late = link ? link->waiting_.extract(number) : decltype(waiting_)::node_type();
            if (!late) return;
            const GErrorPointer error(
                g_error_new_literal(G_IO_ERROR, G_IO_ERROR_TIMED_OUT, "The bus does not answer"));
            late.mapped().asker->tell(nullptr, error.get());
        };
        Cancellation limit;
        if (call.limit) limit = mainQueue_.after(*call.limit, end);
        waiting_.emplace(number, WaitingCall{call, std::move(parameters), asker, deadline, std::move(limit)});
        if (state_ == State::down && !attempt_) attemptAfter(0ns);
    }
    return Cancellation([asker] { asker->answered = nullptr; });
}

void BusConnection::Link::send(const Call& call, GVariant* parameters,
                               std::optional<MonotonicInstant> deadline, std::shared_ptr<Asker> asker) {
    constexpr std::chrono::milliseconds kNone{G_MAXINT};  // to GLib
    auto limit = kNone;
    if (deadline) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(*deadline - clock_.now());
        limit = std::clamp(left, 1ms, kNone);
    }
    g_dbus_connection_call(connection_.get(), call.name, call.path, call.interface, call.method, parameters,
                           call.answerType, call.flags, static_cast<int>(limit.count()), nullptr,
                           Link::answered, new std::shared_ptr<Asker>(std::move(asker)));
}

void BusConnection::Link::answered(GObject* connection, GAsyncResult* result, gpointer asker) {
    GError* failure = nullptr;
    const GVariantPointer answer(
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure));
    const GErrorPointer error(failure);
    const std::unique_ptr<std::shared_ptr<Asker>> taken(static_cast<std::shared_ptr<Asker>*>(asker));
    (*taken)->tell(answer.get(), error.get());
}

Cancellation BusConnection::Link::onSignal(const Signal& signal, std::function<void(GVariant*)> received) {
    const auto entry = std::make_shared<Subscription>(Subscription{signal, std::move(received)});
    subscriptions_.push_back(entry);
    if (connection_) subscribe(entry);
    return Cancellation([weak = weak_from_this(), entry] {
        entry->received = nullptr;
        if (const auto link = weak.lock()) {
            link->unsubscribe(*entry);
            link->subscriptions_.remove(entry);
        }
    });
}

void BusConnection::Link::subscribe(const std::shared_ptr<Subscription>& subscription) {
    const Signal& signal = subscription->signal;
    using WeakSubscription = std::weak_ptr<Subscription>;
    subscription->number = g_dbus_connection_signal_subscribe(
        connection_.get(), signal.sender, signal.interface, signal.member, signal.path, signal.firstArgument,
        G_DBUS_SIGNAL_FLAGS_NONE, received, new WeakSubscription(subscription),
        [](gpointer weak) { delete static_cast<WeakSubscription*>(weak); });
}

void BusConnection::Link::unsubscribe(Subscription& subscription) {
    if (subscription.number == 0) return;
    g_dbus_connection_signal_unsubscribe(connection_.get(), std::exchange(subscription.number, 0));
}

void BusConnection::Link::received(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar*,
                                   GVariant* parameters, gpointer weak) {
    const auto subscription = static_cast<std::weak_ptr<Subscription>*>(weak)->lock();
    if (!subscription || !subscription->received) return;
    const auto function = subscription->received;  // it may end its own subscription while it runs
    function(parameters);
}

Cancellation BusConnection::Link::add(std::shared_ptr<BusExport> exported) {
    exports_.push_back(exported);
    if (connection_) exported->enter(connection_.get());
    return Cancellation([weak = weak_from_this(), exported = std::move(exported)] {
        exported->end();
        const auto link = weak.lock();
        if (!link) return;
        if (link->connection_) exported->leave(link->connection_.get());
        link->exports_.remove(exported);
    });
}

void BusConnection::Link::emit(const char* path, const char* interface, const char* signal,
                               GVariant* parameters) {
    const GVariantPointer taken(parameters != nullptr ? g_variant_ref_sink(parameters) : nullptr);
    if (!connection_) return;
    g_dbus_connection_emit_signal(connection_.get(), nullptr, path, interface, signal, taken.get(), nullptr);
}

std::string BusConnection::sessionAddress() {
    if (const char* const address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr)
        return address;
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime == nullptr || *runtime != '/') return {};
    const std::string socket = std::string(runtime) + "/bus";
    return access(socket.c_str(), F_OK) == 0 ? pathAddress(socket) : std::string();
}

std::string BusConnection::systemAddress() {
    if (const char* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS"); address != nullptr)
        return address;
    for (const char* const socket : {"/var/run/dbus/system_bus_socket", "/run/dbus/system_bus_socket"}) {
        if (access(socket, F_OK) == 0) return pathAddress(socket);
    }
    return {};
}

BusConnection::BusConnection(MainQueue& mainQueue, std::string address)
    : BusConnection(mainQueue, std::move(address), Pace{}) {}

BusConnection::BusConnection(MainQueue& mainQueue, std::string address, const Pace& pace)
    : link_(std::make_shared<Link>(mainQueue, std::move(address), pace)) {
    link_->start();
}

BusConnection::~BusConnection() = default;

BusConnection::State BusConnection::state() const {
    return link_->state();
}

Cancellation BusConnection::onStateChange(std::function<void(State)> observer) {
    return link_->observers().add(std::move(observer));
}

Cancellation BusConnection::call(const Call& call, Answered answered) {
    return link_->call(call, std::move(answered));
}

Cancellation BusConnection::onSignal(const Signal& signal, std::function<void(GVariant*)> received) {
    return link_->onSignal(signal, std::move(received));
}

Cancellation BusConnection::exportObject(Object object) {
    return link_->add(BusExport::of(std::move(object)));
}

Cancellation BusConnection::exportFamily(Family family) {
    return link_->add(BusExport::of(std::move(family)));
}

std::string BusConnection::uniqueName() const {
    GDBusConnection* const connection = link_->connection();
    const gchar* const name = connection != nullptr ? g_dbus_connection_get_unique_name(connection) : nullptr;
    return name != nullptr ? name : "";
}

void BusConnection::emit(const char* path, const char* interface, const char* signal, GVariant* parameters) {
    link_->emit(path, interface, signal, parameters);
}

Cancellation BusConnection::onOwnerChange(const char* name, std::function<void(bool hasOwner)> changed) {
    return onSignal({.sender = kBusDriver,
                     .path = kBusDriverPath,
                     .interface = kBusDriver,
                     .member = "NameOwnerChanged",
                     .firstArgument = name},
                    [changed = std::move(changed)](GVariant* parameters) {
                        if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sss)"))) return;
                        const gchar* owner = nullptr;
                        g_variant_get_child(parameters, 2, "&s", &owner);
                        changed(*owner != '\0');
                    });
}

}  // namespace norvane
