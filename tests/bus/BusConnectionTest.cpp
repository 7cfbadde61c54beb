#include "platform/linux/BusConnection.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "BusPeer.h"
#include "HandDrivenQueue.h"
#include "linux/RunLoop.h"
#include "platform/linux/LinuxMainQueue.h"
#include "PrivateBus.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using State = BusConnection::State;

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms};

BusConnection::Call getId() {
    return {.name = "org.freedesktop.DBus",
            .path = "/org/freedesktop/DBus",
            .interface = "org.freedesktop.DBus",
            .method = "GetId",
            .answerType = G_VARIANT_TYPE("(s)")};
}

// What came of a call.
struct Outcome {
    int answers = 0;
    std::string error;

    BusConnection::Answered taker() {
        return [this](GVariant* answer, const GError* failure) {
            EXPECT_NE(answer == nullptr, failure == nullptr);
            ++answers;
            if (failure != nullptr) error = failure->message;
        };
    }
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

class BusConnectionTest : public testing::Test {
 protected:
    PrivateBus bus;
    LinuxMainQueue queue;
};

TEST_F(BusConnectionTest, HasCallsWaitForTheConnection) {
    BusConnection connection(queue, bus.address(), kAtOnce);
    Outcome early;
    const auto earlyCall = connection.call(getId(), early.taker());
    EXPECT_EQ(connection.state(), State::starting);
    EXPECT_EQ(early.answers, 0);
    EXPECT_TRUE(runUntil([&] { return early.answers == 1; }));
    EXPECT_EQ(early.error, "");
    EXPECT_EQ(connection.state(), State::connected);
    Outcome late;
    const auto lateCall = connection.call(getId(), late.taker());
    EXPECT_EQ(late.answers, 0) << "never from within the call";
    EXPECT_TRUE(runUntil([&] { return late.answers == 1; }));
}

TEST_F(BusConnectionTest, TellsNobodyWhoDoesNotWaitAnyMore) {
    BusConnection connection(queue, bus.address(), kAtOnce);
    Outcome dropped;
    for (const State moment : {State::starting, State::connected}) {
        ASSERT_TRUE(runUntil([&] { return connection.state() == moment; }));
        connection.call(getId(), dropped.taker()).cancel();
        Outcome later;
        const auto call = connection.call(getId(), later.taker());
        ASSERT_TRUE(runUntil([&] { return later.answers == 1; }));
    }
    EXPECT_EQ(dropped.answers, 0);
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
        int changes = 0;
        const auto observing = connection.onStateChange([&](State state) {
            ++changes;
            EXPECT_EQ(state, State::down);
        });
        for (int calls = 0; calls < 3; ++calls) {
            Outcome outcome;
            const auto call = connection.call(getId(), outcome.taker());
            EXPECT_EQ(outcome.answers, 0) << "never from within the call";
            EXPECT_TRUE(runUntil([&] { return outcome.answers == 1; })) << c.address;
            EXPECT_EQ(outcome.error, c.error) << c.address;
        }
        EXPECT_EQ(changes, 1) << c.address;
    }
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
        ASSERT_TRUE(runUntil([&] { return connection.state() == State::connected; }));
        const BusPeer peer(bus.address());
        peer.requestName("org.norvane.Test");
        peer.releaseName("org.norvane.Test");
        EXPECT_TRUE(runUntil([&] { return owners == std::vector<bool>({true, false}); })) << round;
        owners.clear();
        bus.kill();
        Outcome lost;
        const auto call = connection.call(getId(), lost.taker());
        EXPECT_TRUE(runUntil([&] { return lost.answers == 1; }));
        EXPECT_NE(lost.error, "");
        ASSERT_TRUE(runUntil([&] { return connection.state() == State::down; }));
        bus.start();
    }
    ASSERT_TRUE(runUntil([&] { return connection.state() == State::connected; }));
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
        bool isOver = false;
        const auto call = connection.call(getId(), [&](GVariant*, const GError*) { isOver = true; });
        EXPECT_TRUE(runUntil([&] { return isOver; }));
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
    Outcome needed;
    const auto call = connection.call(getId(), needed.taker());
    slow.advance(0ns);
    EXPECT_TRUE(runUntil([&] { return deaf.throwOut(); }));
    EXPECT_TRUE(runUntil([&] { return needed.answers == 1; }));
}

TEST_F(BusConnectionTest, WaitsForASilentBusNoLongerThanForAnAnswer) {
    const DeafSocket deaf(bus.folder() + "/deaf");
    HandDrivenQueue slow;
    BusConnection connection(slow, deaf.address(), kAtOnce);
    Outcome impatient;
    auto call = getId();
    call.limit = 2s;
    const auto impatientCall = connection.call(call, impatient.taker());
    Outcome usual;
    const auto usualCall = connection.call(getId(), usual.taker());
    Outcome patient;
    call.limit.reset();
    const auto patientCall = connection.call(call, patient.taker());
    slow.advance(0ns);
    slow.advance(1999ms);
    EXPECT_EQ(impatient.answers, 0);
    slow.advance(1ms);
    EXPECT_EQ(impatient.answers, 1);
    EXPECT_EQ(impatient.error, "The bus does not answer");
    EXPECT_EQ(connection.state(), State::starting);
    slow.advance(23s);
    EXPECT_EQ(usual.answers, 1);
    EXPECT_TRUE(runUntil([&] { return connection.state() == State::down; }));
    EXPECT_EQ(usual.answers + impatient.answers, 2);
    EXPECT_EQ(patient.answers, 1) << "there is nobody to wait for";
}

TEST_F(BusConnectionTest, GoesAwayAtAnyMoment) {
    const DeafSocket deaf(bus.folder() + "/deaf");
    for (const std::string& address : {bus.address(), deaf.address()}) {
        for (int turns = 0; turns < 30; ++turns) {
            BusConnection connection(queue, address, kAtOnce);
            const auto following = connection.onOwnerChange("org.norvane.Test", [](bool) {});
            Outcome outcome;
            const auto call = connection.call(getId(), outcome.taker());
            for (int turn = 0; turn < turns; ++turn)
                g_main_context_iteration(nullptr, FALSE);
        }
    }
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

}  // namespace
}  // namespace norvane
