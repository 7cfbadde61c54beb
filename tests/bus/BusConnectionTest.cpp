#include "platform/linux/BusConnection.h"

#include <sys/socket.h>
#include <sys/un.h>

#include "BusTest.h"
#include "HandDrivenQueue.h"
#include "platform/linux/FileDescriptor.h"

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
    // The error, or "" for an answer.
    const std::string& comes() const {
        EXPECT_TRUE(runUntil([&] { return answers == 1; }));
        return error;
    }

    int answers = 0;
    std::string error;
    Cancellation call;
};

class BusConnectionTest : public BusTest {
 protected:
    BusConnectionTest() : deaf(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un name{.sun_family = AF_UNIX, .sun_path = {}};
        (bus.folder() + "/deaf").copy(name.sun_path, sizeof name.sun_path - 1);
        EXPECT_EQ(bind(deaf.get(), reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
        EXPECT_EQ(listen(deaf.get(), 10), 0);
    }
    // Whether it was connected to.
    bool comesToThrowOut() const {
        return runUntil([&] { return bool(FileDescriptor(accept(deaf.get(), nullptr, nullptr))); });
    }

    // A socket that is no bus: whoever connects is kept waiting, or thrown out.
    const FileDescriptor deaf;
    const std::string deafAddress = "unix:path=" + bus.folder() + "/deaf";
    HandDrivenQueue slow;
};

TEST_F(BusConnectionTest, SaysWhyThereIsNone) {
    for (const auto& [address, error] :
         {std::pair{"", "There is no bus"},
          {"nonsense", "There is no bus"},
          {"unix:path=/nowhere/at/all", "Could not connect: No such file or directory"}}) {
        BusConnection connection(queue, address, kAtOnce);
        std::vector<State> states;
        const auto observing = connection.onStateChange([&](State state) { states.push_back(state); });
        for (int calls = 0; calls < 3; ++calls)
            EXPECT_EQ(Outcome(connection, getId()).comes(), error);
        EXPECT_EQ(states, std::vector{State::down}) << address;
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
        // The first ones wait for the connection.
        for (int calls = 0; calls < 2; ++calls) {
            Outcome dropped(connection, getId());
            dropped.call.cancel();
            EXPECT_EQ(Outcome(connection, getId()).comes(), "") << round;
            EXPECT_EQ(dropped.answers, 0) << round;
        }
        EXPECT_EQ(connection.state(), State::connected);
        { const PlayedService owner(bus, "org.norvane.Test", nullptr); }
        EXPECT_TRUE(runUntil([&] { return owners == std::vector<bool>({true, false}); })) << round;
        owners.clear();
        bus.kill();
        EXPECT_NE(Outcome(connection, getId()).comes(), "");
        ASSERT_TRUE(comesToBe(connection, State::down));
        bus.start();
    }
    EXPECT_EQ(states, (std::vector{State::connected, State::down, State::connected, State::down,
                                   State::connected, State::down}));
}

TEST_F(BusConnectionTest, IsTriedEverMoreSeldomAndWhenItIsNeeded) {
    BusConnection connection(slow, deafAddress,
                             {.firstAttempt = 200ms, .firstPause = 1s, .longestPause = 5s});
    for (const std::chrono::nanoseconds pause : {200ms, 1000ms, 2000ms, 4000ms, 5000ms, 5000ms}) {
        EXPECT_EQ(slow.untilTheNext(), pause);
        slow.advance(pause);
        EXPECT_TRUE(comesToThrowOut());
        EXPECT_TRUE(hearsAll(connection)) << "the attempt has come to its end";
        EXPECT_EQ(connection.state(), State::down);
    }
    const Outcome needed(connection, getId());
    slow.advance(0ns);
    EXPECT_TRUE(comesToThrowOut());
    EXPECT_NE(needed.comes(), "");
}

TEST_F(BusConnectionTest, WaitsForASilentBusNoLongerThanForAnAnswer) {
    BusConnection connection(slow, deafAddress, kAtOnce);
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
    EXPECT_EQ(impatient.error, "The bus does not answer");
    EXPECT_EQ(connection.state(), State::starting);
    slow.advance(23s);
    EXPECT_EQ(usual.answers, 1);
    EXPECT_NE(patient.comes(), "") << "there is nobody to wait for";
    EXPECT_EQ(usual.answers + impatient.answers, 2);
}

TEST_F(BusConnectionTest, GoesAwayAtAnyMoment) {
    for (int turns = 0; turns < 60; ++turns) {
        BusConnection connection(queue, turns % 2 == 0 ? bus.address() : deafAddress, kAtOnce);
        const Outcome outcome(connection, getId());
        turn(turns / 2);
    }
    turnToTheEnd();
}

}  // namespace
}  // namespace norvane
