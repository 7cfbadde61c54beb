#include "platform/linux/BusConnection.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "BusPeer.h"
#include "BusTest.h"
#include "HandDrivenQueue.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using State = BusConnection::State;

// A call and what came of it.
struct Outcome {
    Outcome(BusConnection& connection, const BusConnection::Call& what)
        : call(connection.call(what, [this](GVariant* answer, const GError* failure) {
              EXPECT_NE(answer == nullptr, failure == nullptr);
              ++answers;
              if (failure != nullptr) error = failure->message;
          })) {
        EXPECT_EQ(answers, 0) << "never from within the call";
    }
    bool comes() const {
        return runUntil([&] { return answers == 1; });
    }

    int answers = 0;
    std::string error;
    Cancellation call;
};

// A listening socket that is no bus: whoever connects is kept waiting, or thrown out.
class DeafSocket {
 public:
    explicit DeafSocket(const std::string& path) : address_("unix:path=" + path) {
        socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        path.copy(name.sun_path, sizeof name.sun_path - 1);
        EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
        EXPECT_EQ(listen(socket_, 10), 0);
    }
    ~DeafSocket() { close(socket_); }
    DeafSocket(const DeafSocket&) = delete;
    DeafSocket& operator=(const DeafSocket&) = delete;

    const std::string& address() const { return address_; }
    // Whether somebody was there.
    bool throwOut() const {
        const int guest = accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
        return guest >= 0 && close(guest) == 0;
    }

 private:
    const std::string address_;
    int socket_;
};

class BusConnectionTest : public BusTest {};

TEST_F(BusConnectionTest, HasCallsWaitForTheConnectionAndTellsNobodyWhoDoesNotWait) {
    BusConnection connection(queue, bus.address(), kAtOnce);
    for (const State moment : {State::starting, State::connected}) {
        EXPECT_EQ(connection.state(), moment);
        Outcome dropped(connection, getId());
        dropped.call.cancel();
        const Outcome kept(connection, getId());
        EXPECT_TRUE(kept.comes());
        EXPECT_EQ(kept.error, "");
        EXPECT_EQ(dropped.answers, 0);
    }
}

TEST_F(BusConnectionTest, SaysWhyThereIsNone) {
    struct Case {
        const char* address;
        const char* error;
    };
    for (const Case& c :
         {Case{"", "There is no bus"}, Case{"nonsense", "There is no bus"},
          Case{"unix:path=/nowhere/at/all", "Could not connect: No such file or directory"}}) {
        BusConnection connection(queue, c.address, kAtOnce);
        std::vector<State> states;
        const auto observing = connection.onStateChange([&](State state) { states.push_back(state); });
        for (int calls = 0; calls < 3; ++calls) {
            const Outcome outcome(connection, getId());
            EXPECT_TRUE(outcome.comes()) << c.address;
            EXPECT_EQ(outcome.error, c.error) << c.address;
        }
        EXPECT_EQ(states, std::vector{State::down}) << c.address;
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.address().c_str(), 1);
    EXPECT_EQ(BusConnection::sessionAddress(), bus.address());
}

TEST_F(BusConnectionTest, ComesBackWithItsBusAndFollowsItsSignalsAgain) {
    BusConnection connection(queue, bus.address(), kAtOnce);
    std::vector<State> states;
    const auto observing = connection.onStateChange([&](State state) { states.push_back(state); });
    std::vector<bool> owners;
    const auto following =
        connection.onOwnerChange("org.norvane.Test", [&](bool hasOwner) { owners.push_back(hasOwner); });
    auto ended = connection.onOwnerChange("org.norvane.Test", [&](bool) { ADD_FAILURE(); });
    ended.cancel();
    for (const int round : {1, 2, 3}) {
        ASSERT_TRUE(comesToBe(connection, State::connected));
        const BusPeer peer(bus.address());
        peer.requestName("org.norvane.Test");
        peer.releaseName("org.norvane.Test");
        EXPECT_TRUE(runUntil([&] { return owners == std::vector<bool>({true, false}); })) << round;
        owners.clear();
        bus.kill();
        const Outcome lost(connection, getId());
        EXPECT_TRUE(lost.comes());
        EXPECT_NE(lost.error, "");
        ASSERT_TRUE(comesToBe(connection, State::down));
        bus.start();
    }
    ASSERT_TRUE(comesToBe(connection, State::connected));
    EXPECT_EQ(states, (std::vector<State>{State::connected, State::down, State::connected, State::down,
                                          State::connected, State::down, State::connected}));
}

TEST_F(BusConnectionTest, IsTriedEverMoreSeldomAndWhenItIsNeeded) {
    const DeafSocket deaf(bus.folder() + "/deaf");
    HandDrivenQueue slow;
    BusConnection connection(slow, deaf.address(),
                             {.firstAttempt = 200ms, .firstPause = 1s, .longestPause = 5s});
    // The calls say when an attempt has come to its end.
    const auto isTried = [&] {
        EXPECT_TRUE(runUntil([&] { return deaf.throwOut(); }));
        EXPECT_TRUE(hearsAll(connection));
    };
    EXPECT_EQ(slow.untilTheNext(), 200ms);
    slow.advance(200ms);
    isTried();
    EXPECT_EQ(connection.state(), State::down);
    for (const std::chrono::nanoseconds pause : {1s, 2s, 4s, 5s, 5s}) {
        EXPECT_EQ(slow.untilTheNext(), pause);
        slow.advance(pause);
        isTried();
    }
    const Outcome needed(connection, getId());
    slow.advance(0ns);
    EXPECT_TRUE(runUntil([&] { return deaf.throwOut(); }));
    EXPECT_TRUE(needed.comes());
}

TEST_F(BusConnectionTest, WaitsForASilentBusNoLongerThanForAnAnswer) {
    const DeafSocket deaf(bus.folder() + "/deaf");
    HandDrivenQueue slow;
    BusConnection connection(slow, deaf.address(), kAtOnce);
    auto call = getId();
    const Outcome usual(connection, call);
    call.limit = 2s;
    const Outcome impatient(connection, call);
    call.limit.reset();
    const Outcome patient(connection, call);
    slow.advance(0ns);
    slow.advance(1999ms);
    EXPECT_EQ(impatient.answers, 0);
    slow.advance(1ms);
    EXPECT_EQ(impatient.answers, 1);
    EXPECT_EQ(impatient.error, "The bus does not answer");
    EXPECT_EQ(connection.state(), State::starting);
    slow.advance(23s);
    EXPECT_EQ(usual.answers, 1);
    EXPECT_TRUE(comesToBe(connection, State::down));
    EXPECT_EQ(usual.answers + impatient.answers, 2);
    EXPECT_EQ(patient.answers, 1) << "there is nobody to wait for";
}

TEST_F(BusConnectionTest, GoesAwayAtAnyMoment) {
    const DeafSocket deaf(bus.folder() + "/deaf");
    for (const std::string& address : {bus.address(), deaf.address()}) {
        for (int turns = 0; turns < 30; ++turns) {
            BusConnection connection(queue, address, kAtOnce);
            const auto following = connection.onOwnerChange("org.norvane.Test", [](bool) {});
            const Outcome outcome(connection, getId());
            for (int turn = 0; turn < turns; ++turn)
                g_main_context_iteration(nullptr, FALSE);
        }
    }
    turnToTheEnd();
}

}  // namespace
}  // namespace norvane
