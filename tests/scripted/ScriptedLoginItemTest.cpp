#include <gtest/gtest.h>

#include <string>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

TEST(ScriptedLoginItem, AnswersInTheOrderOfTheCallsAfterItsDelayAndNeverAtOnce) {
    ScriptedMachine machine;
    std::string heard;
    const auto ask = [&] { machine.loginItem.status([&](int status) { heard += std::to_string(status); }); };
    machine.loginItem.delay = 2s;
    machine.loginItem.registerItem([&](const auto& error) { heard += error ? "error" : "r"; });
    machine.loginItem.delay = 1s;  // what was asked later sets out later, and arrives as if it had not
    ask();
    EXPECT_EQ(heard, "");
    machine.advance(1s);
    EXPECT_EQ(heard, "r") << "none overtakes another";
    machine.advance(1s);
    EXPECT_EQ(heard, "r1");

    machine.loginItem.hold();
    ask();
    machine.advance(1min);
    EXPECT_EQ(heard, "r1");
    EXPECT_EQ(machine.loginItem.unanswered(), 1U);
    machine.loginItem.currentStatus = 0;
    machine.loginItem.letGo();
    machine.advance(1s);
    EXPECT_EQ(heard, "r10") << "as it is when the answer comes";
}

}  // namespace
}  // namespace norvane
