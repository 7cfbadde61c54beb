#include "platform/linux/LinuxUserNotificationCenter.h"

#include <map>
#include <thread>

#include "BusTest.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kName = "org.freedesktop.Notifications";
constexpr auto kAuthorized = NotificationAuthorization::authorized;

using Answers = std::map<std::string, PlayedService::Answer>;

class NotificationCenterTest : public BusTest {
 protected:
    NotificationCenterTest() { begin(bus.address()); }

    void begin(const std::string& address, const LinuxUserNotificationCenter::Limits& limits = {}) {
        center.reset();
        connection = std::make_unique<BusConnection>(queue, address, kAtOnce);
        center = std::make_unique<LinuxUserNotificationCenter>(queue, *connection, limits);
    }
    std::unique_ptr<PlayedService> serve(const Answers& answers) {
        return std::make_unique<PlayedService>(bus, kName, [answers](const PlayedService::Call& call) {
            const auto found = answers.find(call.method);
            return found != answers.end() ? found->second : PlayedService::Answer();
        });
    }
    // Asks for delivery, leave and status on another thread. What comes of each, as "error, granted, known".
    std::string outcomes(const std::string& body = "body") {
        std::string error, leave, known;
        std::thread([&] {
            center->add({"id", {"title", body, NotificationSound::none}, 0ns},
                        [&](const auto& told) { error += told.value_or("delivered"); });
            center->requestAuthorization([&](bool isYes) { leave += isYes ? ", granted" : ", denied"; });
            center->authorizationStatus([&](auto is) { known += is == kAuthorized ? ", known" : ", -"; });
        }).join();
        EXPECT_EQ(error + leave + known, "") << "not before the main loop turns";
        EXPECT_TRUE(runUntil([&] { return !error.empty() && !leave.empty() && !known.empty(); }));
        return error + leave + known;
    }

    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxUserNotificationCenter> center;
};

TEST_F(NotificationCenterTest, AsksEachServerOnceWhetherItTakesMarkupAndSaysWhatItIsToShow) {
    EXPECT_EQ(outcomes(),
              "The name org.freedesktop.Notifications was not provided by any .service files"
              ", denied, -");
    for (const bool takesMarkup : {false, true, false}) {
        const auto server =
            serve({{"GetCapabilities", {takesMarkup ? "(['body-markup'],)" : "(['actions'],)"}},
                   {"Notify", {"(uint32 7,)"}}});
        center->add({"id", {}, 1h}, [](const auto&) { ADD_FAILURE() << "it is not time"; });
        int completions = 0;
        const auto before = std::chrono::steady_clock::now();
        for (int count = 0; count < 5; ++count)
            center->add({"id", {"Akku \xE2\x9A\xA1", "", NotificationSound::defaultSound}, 20ms},
                        [&](const auto& error) { completions += error ? 0 : 1; });
        EXPECT_TRUE(runUntil([&] { return completions == 5; }));
        EXPECT_GE(std::chrono::steady_clock::now() - before, 20ms);
        EXPECT_EQ(outcomes("a < \"b\" & \xFF"), "delivered, granted, known");
        EXPECT_EQ(server->count("GetCapabilities"), 1u);
        const auto notified = server->argumentsOf("Notify");
        ASSERT_EQ(notified.size(), 6u);
        EXPECT_EQ(notified.front(),
                  "('Norvane', 0, 'norvane', 'Akku \xE2\x9A\xA1', '', [], {'desktop-entry': <'norvane'>, "
                  "'urgency': <byte 0x01>, 'sound-name': <'message-new-instant'>}, -1)");
        EXPECT_EQ(notified.back(), std::string("('Norvane', 0, 'norvane', 'title', '") +
                                       (takesMarkup ? "a &lt; \"b\" &amp; \uFFFD" : "a < \"b\" & \uFFFD") +
                                       "', [], {'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>}, -1)");
        if (takesMarkup) continue;  // the next one comes at once, and else with another bus
        bus.kill();
        EXPECT_EQ(outcomes().find("delivered"), std::string::npos);
        bus.start();
    }
    begin("");
    EXPECT_EQ(outcomes(), "There is no bus, denied, -");
}

TEST_F(NotificationCenterTest, HasTheServerStartedWhereTheBusKnowsHow) {
    // Debian's interpreter: another one in the path does not have the module.
    bus.makeActivatable(kName, "/usr/bin/python3 -m dbusmock --session --template notification_daemon");
    std::optional<NotificationAuthorization> known;
    center->authorizationStatus([&](NotificationAuthorization status) { known = status; });
    EXPECT_TRUE(runUntil([&] { return known == kAuthorized; }));
    EXPECT_FALSE(BusPeer(bus.address()).hasOwner(kName)) << "the status starts nothing";
    EXPECT_EQ(outcomes(), "delivered, granted, known");
}

TEST_F(NotificationCenterTest, BearsSilenceGarbageAndRefusals) {
    const PlayedService::Answer silence{.isLater = true};
    const PlayedService::Answer failure{.error = "org.freedesktop.DBus.Error.Failed"};
    const PlayedService::Answer refusal{.error = "org.norvane.No", .words = "Too many\n\t\n of them\n"};
    const PlayedService::Answer endless{.error = "org.norvane.No", .words = std::string(9999, 'x')};
    const struct {
        PlayedService::Answer capabilities, information, notify;
        std::string outcomes;
    } cases[] = {
        {silence, silence, silence, "Timeout was reached, denied, known"},
        {{"('body-markup',)"}, {"(3,)"}, {"(uint32 1,)"}, "delivered, granted, known"},
        {failure, failure, {"(uint32 1,)"}, "delivered, denied, known"},
        {failure, {}, refusal, "Too many of them, granted, known"},
        {failure, {}, endless, std::string(500, 'x') + ", granted, known"},
    };
    for (const auto& each : cases) {
        const auto server = serve({{"GetCapabilities", each.capabilities},
                                   {"GetServerInformation", each.information},
                                   {"Notify", each.notify}});
        begin(bus.address());
        if (each.notify.isLater) begin(bus.address(), {.delivery = 100ms, .authorization = 50ms});
        EXPECT_EQ(outcomes("1 < 2"), each.outcomes);
        for (const std::string& notified : server->argumentsOf("Notify"))
            EXPECT_NE(notified.find("'1 < 2'"), std::string::npos) << "no markup";
    }
    const auto server = serve({});
    for (int turns = 0; turns < 30; ++turns) {
        center->add({"id", {}, 0ns}, [](const auto&) {});
        center->authorizationStatus([](NotificationAuthorization) {});
        turn(turns);
        begin(bus.address());
    }
    turnToTheEnd();
}

}  // namespace
}  // namespace norvane
