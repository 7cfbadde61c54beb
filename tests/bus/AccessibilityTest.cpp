#include "platform/linux/LinuxAccessibility.h"

#include <memory>
#include <string>

#include "BusTest.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "PlayedService.h"

namespace norvane {
namespace {

// A desktop whose accessibility bus is the session bus itself, and that counts who joins.
class AccessibilityTest : public BusTest {
 protected:
    void startStatus(bool isEnabledAtFirst) {
        isEnabled = isEnabledAtFirst;
        status = std::make_unique<PlayedService>(
            bus, "org.a11y.Bus", [this](const PlayedService::Call& call) -> PlayedService::Answer {
                if (call.method == "GetAddress") return {"('" + address + "',)"};
                return {isEnabled ? "(<true>,)" : "(<false>,)"};
            });
    }
    void startRegistry() {
        registry.reset();
        registry = std::make_unique<PlayedService>(
            bus, "org.a11y.atspi.Registry", [this](const PlayedService::Call& call) -> PlayedService::Answer {
                if (call.method != "Embed") return {.error = "org.norvane.No"};
                application = call.arguments.substr(3, call.arguments.find('\'', 3) - 3);
                ++joins;
                return {"(('org.a11y.atspi.Registry', objectpath '/org/a11y/atspi/accessible/root'),)"};
            });
    }
    void say(const std::string& values, const std::string& outdated = "@as []") {
        status->emitChange("/org/a11y/bus", "org.a11y.Status", values, outdated);
    }
    void sayEnabled(bool enabled) {
        isEnabled = enabled;
        say(enabled ? "{'IsEnabled': <true>}" : "{'IsEnabled': <false>}");
    }
    bool joined(int times) {
        return runUntil([&] { return joins == times; });
    }
    bool comesToBeOn(bool isOn) {
        return runUntil([&] { return accessibility.isOn() == isOn; });
    }

    LinuxMonotonicClock clock;
    AccessibleSurfaces surfaces;
    bool isEnabled = false;
    int joins = 0;
    std::string address = bus.address();
    std::string application;
    std::unique_ptr<PlayedService> status;
    std::unique_ptr<PlayedService> registry;
    BusConnection session{queue, bus.address(), kAtOnce};
    LinuxAccessibility accessibility{session, queue, clock, surfaces, [] { return 1.0; }};
};

TEST_F(AccessibilityTest, FollowsWhetherAnybodyWantsToBeTold) {
    startRegistry();
    startStatus(false);
    ASSERT_TRUE(comesToBe(session, BusConnection::State::connected));
    EXPECT_FALSE(accessibility.isOn());
    sayEnabled(true);
    ASSERT_TRUE(joined(1));
    const BusPeer peer(bus.address());
    EXPECT_TRUE(peer.hasOwner(application.c_str()));
    sayEnabled(false);
    EXPECT_TRUE(peer.comesToHaveOwner(application.c_str(), false)) << "the connection is closed";
    EXPECT_FALSE(accessibility.isOn());
    sayEnabled(true);
    ASSERT_TRUE(joined(2));
    say("{'IsEnabled': <'garbage'>}");
    say("@a{sv} {}", "['IsEnabled']");
    startRegistry();
    ASSERT_TRUE(joined(3)) << "another registry";
    EXPECT_TRUE(accessibility.isOn());
    status.reset();
    EXPECT_TRUE(comesToBeOn(false)) << "whoever said so is gone";
    startStatus(true);
    EXPECT_TRUE(joined(4)) << "and comes again";
}

TEST_F(AccessibilityTest, BearsABusThatIsNone) {
    for (const char* const bad : {"", "nonsense", "unix:path=/nowhere/at/all"}) {
        address = bad;
        startStatus(true);
        ASSERT_TRUE(comesToBeOn(true)) << bad;
        status.reset();
        ASSERT_TRUE(comesToBeOn(false)) << bad;
    }
}

// What a client of another kind than ours may ask: nothing of it may bring anything down.
TEST_F(AccessibilityTest, AnswersOddQuestions) {
    startRegistry();
    startStatus(true);
    ASSERT_TRUE(joined(1));
    struct Question {
        const char* object;
        const char* interface;
        const char* method;
        const char* arguments;
        const char* answer;
    };
    constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
    constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
    for (const Question& q : {
             Question{"root", kAccessible, "GetRoleName", "()", "('application',)"},
             Question{"root", kAccessible, "GetChildAtIndex", "(-1,)", "(('', '/org/a11y/atspi/null'),)"},
             Question{"root", kAccessible, "GetChildAtIndex", "(2147483647,)",
                      "(('', '/org/a11y/atspi/null'),)"},
             Question{"root", kProperties, "Get", "('org.a11y.atspi.Application', 'ToolkitName')",
                      "(<'Norvane'>,)"},
             Question{"root", kProperties, "Get", "('org.a11y.atspi.Value', 'CurrentValue')", "error"},
             Question{"root", "org.a11y.atspi.Action", "DoAction", "(0,)", "error"},
             Question{"99", kAccessible, "GetRole", "()", "error"},
             Question{"0", kAccessible, "GetRole", "()", "error"},
             Question{"99999999999999999999999", kAccessible, "GetRole", "()", "error"},
             Question{"1/2", kAccessible, "GetRole", "()", "error"},
         }) {
        const std::string path = std::string("/org/a11y/atspi/accessible/") + q.object;
        std::string answer;
        const Cancellation asked =
            session.call({.name = application.c_str(),
                          .path = path.c_str(),
                          .interface = q.interface,
                          .method = q.method,
                          .parameters = PlayedService::parsed(q.arguments)},
                         [&](GVariant* value, const GError*) {
                             answer = value != nullptr ? PlayedService::printed(value) : "error";
                         });
        ASSERT_TRUE(runUntil([&] { return !answer.empty(); })) << path << q.method;
        EXPECT_EQ(answer, q.answer) << path << ' ' << q.method;
    }
}

}  // namespace
}  // namespace norvane
