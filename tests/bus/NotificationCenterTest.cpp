#include "platform/linux/LinuxUserNotificationCenter.h"

#include <map>
#include <thread>

#include "BusTest.h"
#include "PlayedService.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kName = "org.freedesktop.Notifications";

// A server that takes everything, and markup too if it says so.
class Server {
 public:
    explicit Server(const PrivateBus& bus, bool takesMarkup = false)
        : service(bus, kName, [this](const auto& call) { return answers[call.method]; }) {
        answers["GetCapabilities"].values = takesMarkup ? "(['body', 'body-markup'],)" : "(['actions'],)";
        answers["GetServerInformation"].values = "('a', 'b', 'c', 'd')";
        answers["Notify"].values = "(uint32 7,)";
    }
    bool hasShown(const std::string& text) const {
        const auto calls = service.argumentsOf("Notify");
        return !calls.empty() && calls.back().find(text) != std::string::npos;
    }

    std::map<std::string, PlayedService::Answer> answers;
    PlayedService service;
};

NotificationRequest request(const std::string& title, const std::string& body) {
    return {"id", {title, body, NotificationSound::none}, 0ns};
}

class NotificationCenterTest : public BusTest {
 protected:
    NotificationCenterTest() { begin(bus.address()); }

    void begin(const std::string& address, const LinuxUserNotificationCenter::Limits& limits = {}) {
        center.reset();
        connection = std::make_unique<BusConnection>(queue, address, kAtOnce);
        center = std::make_unique<LinuxUserNotificationCenter>(queue, *connection, limits);
    }

    // The error of a notification, "" if it was delivered; "never" if nothing comes.
    std::string delivered(const NotificationRequest& notification) {
        std::string told = "never";
        int completions = 0;
        center->add(notification, [&](const std::optional<std::string>& error) {
            EXPECT_NE(error, "");
            told = error.value_or("");
            ++completions;
        });
        EXPECT_EQ(completions, 0) << "not before the main loop turns";
        EXPECT_TRUE(runUntil([&] { return completions > 0; }));
        EXPECT_EQ(completions, 1);
        return told;
    }
    std::optional<bool> granted() {
        std::optional<bool> answer;
        center->requestAuthorization([&](bool isGranted) { answer = isGranted; });
        runUntil([&] { return answer.has_value(); });
        return answer;
    }
    std::optional<NotificationAuthorization> status() {
        std::optional<NotificationAuthorization> answer;
        center->authorizationStatus([&](NotificationAuthorization status) { answer = status; });
        runUntil([&] { return answer.has_value(); });
        return answer;
    }
    void expectNobody(const std::string& error) {
        EXPECT_EQ(delivered(request("title", "body")), error);
        EXPECT_EQ(granted(), false);
        EXPECT_EQ(status(), NotificationAuthorization::notDetermined);
    }

    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxUserNotificationCenter> center;
};

TEST_F(NotificationCenterTest, SaysWhatTheServerIsToShow) {
    const Server server(bus, true);
    EXPECT_EQ(delivered(request("CPU & <co>", "a < b & c > \"d\"")), "");
    NotificationRequest loud = request("Akku schwach \xE2\x9A\xA1", "");
    loud.content.sound = NotificationSound::defaultSound;
    EXPECT_EQ(delivered(loud), "");
    EXPECT_EQ(delivered(request("broken \xFF", "by\xC3")), "") << "not valid, but shown";
    EXPECT_EQ(
        server.service.argumentsOf("Notify"),
        (std::vector<std::string>{
            "('Norvane', 0, 'norvane', 'CPU & <co>', 'a &lt; b &amp; c &gt; \"d\"', [], "
            "{'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>}, -1)",
            "('Norvane', 0, 'norvane', 'Akku schwach \xE2\x9A\xA1', '', [], "
            "{'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>, 'sound-name': <'message-new-instant'>}, "
            "-1)",
            "('Norvane', 0, 'norvane', 'broken \xEF\xBF\xBD', 'by\xEF\xBF\xBD', [], "
            "{'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>}, -1)"}));
}

TEST_F(NotificationCenterTest, EscapesTheBodyForServersThatTakeMarkupAndAsksEachServerOnce) {
    for (const bool takesMarkup : {false, true, false}) {
        const Server server(bus, takesMarkup);
        int completions = 0;
        for (int count = 0; count < 5; ++count) {
            center->add(request("together", ""), [&](const std::optional<std::string>& error) {
                EXPECT_FALSE(error);
                ++completions;
            });
        }
        EXPECT_TRUE(runUntil([&] { return completions == 5; }));
        EXPECT_EQ(delivered(request("two", "1 < 2")), "");
        EXPECT_EQ(server.service.count("GetCapabilities"), 1);
        EXPECT_EQ(server.service.count("Notify"), 6);
        EXPECT_TRUE(server.hasShown(takesMarkup ? "'1 &lt; 2'" : "'1 < 2'"));
    }
}

TEST_F(NotificationCenterTest, MayBeAskedOnAnyThread) {
    const Server server(bus);
    int completions = 0;
    std::thread other([&] {
        center->add(request("title", "body"), [&](const std::optional<std::string>& error) {
            EXPECT_FALSE(error);
            ++completions;
        });
        center->requestAuthorization([&](bool isGranted) {
            EXPECT_TRUE(isGranted);
            ++completions;
        });
        center->authorizationStatus([&](NotificationAuthorization status) {
            EXPECT_EQ(status, NotificationAuthorization::authorized);
            ++completions;
        });
    });
    other.join();
    EXPECT_TRUE(runUntil([&] { return completions == 3; }));
}

TEST_F(NotificationCenterTest, ShowsNothingBeforeItsTime) {
    const Server server(bus);
    NotificationRequest late = request("late", "");
    late.timeInterval = 1h;
    center->add(late, [](const std::optional<std::string>&) { ADD_FAILURE(); });
    NotificationRequest soon = request("soon", "");
    soon.timeInterval = 20ms;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(delivered(soon), "");
    EXPECT_GE(std::chrono::steady_clock::now() - before, 20ms);
    EXPECT_EQ(server.service.count("Notify"), 1);
}

TEST_F(NotificationCenterTest, SaysThatThereIsNoServerOrNoBusAndOutlivesThem) {
    expectNobody("The name org.freedesktop.Notifications was not provided by any .service files");
    {
        const Server server(bus);
        EXPECT_EQ(delivered(request("title", "body")), "") << "now there is one";
        EXPECT_EQ(granted(), true);
        EXPECT_EQ(status(), NotificationAuthorization::authorized);
        bus.kill();
        EXPECT_NE(delivered(request("title", "body")), "");
    }
    bus.start();
    {
        const Server server(bus, true);
        EXPECT_EQ(delivered(request("title", "1 < 2")), "");
        EXPECT_TRUE(server.hasShown("1 &lt; 2")) << "asked anew";
    }
    begin("");
    expectNobody("There is no bus");
    begin("unix:path=/nowhere/at/all");
    expectNobody("Could not connect: No such file or directory");
}

TEST_F(NotificationCenterTest, HasTheServerStartedWhereTheBusKnowsHow) {
    // Debian's interpreter: another one in the path does not have the module.
    bus.makeActivatable(kName, "/usr/bin/python3 -m dbusmock --session --template notification_daemon");
    EXPECT_EQ(status(), NotificationAuthorization::authorized);
    const BusPeer peer(bus.address());
    EXPECT_FALSE(peer.hasOwner(kName)) << "the status starts nothing";
    EXPECT_EQ(delivered(request("title", "body")), "");
    EXPECT_EQ(granted(), true);
}

TEST_F(NotificationCenterTest, DoesNotWaitForAServerThatNeverAnswers) {
    Server server(bus);
    for (const char* const method : {"GetCapabilities", "GetServerInformation", "Notify"})
        server.answers[method] = {.isLater = true};
    begin(bus.address(), {.delivery = 100ms, .authorization = 50ms});
    EXPECT_EQ(granted(), false);
    EXPECT_EQ(delivered(request("title", "body")), "Timeout was reached");
    EXPECT_EQ(status(), NotificationAuthorization::authorized) << "it is there, after all";
    center->add(request("title", "body"), [](const std::optional<std::string>&) { ADD_FAILURE(); });
    g_main_context_iteration(nullptr, FALSE);
    center.reset();
    turnToTheEnd();
}

TEST_F(NotificationCenterTest, BearsGarbage) {
    Server server(bus);
    server.answers["GetCapabilities"].values = "('body-markup',)";
    server.answers["GetServerInformation"].values = "(3,)";
    EXPECT_EQ(delivered(request("title", "1 < 2")), "");
    EXPECT_TRUE(server.hasShown("'1 < 2'"));
    EXPECT_EQ(granted(), true) << "it answers";
    server.answers["Notify"].values = "('seven',)";
    EXPECT_NE(delivered(request("title", "")).find("returned type"), std::string::npos);
}

TEST_F(NotificationCenterTest, PassesTheServersRefusalOnAsOneLine) {
    Server server(bus);
    server.answers["GetCapabilities"] = {.error = "org.freedesktop.DBus.Error.Failed"};
    std::string umlauts;
    for (int count = 0; count < 1000; ++count)
        umlauts += "\xC3\xA4";
    const struct {
        std::string words;
        std::string error;
    } cases[] = {{"Too many\n\t\n of them\n", "Too many of them"},
                 {"", "org.norvane.Refused"},
                 {umlauts, umlauts.substr(0, 500)}};
    for (const auto& c : cases) {
        server.answers["Notify"] = {.error = "org.norvane.Refused", .words = c.words};
        EXPECT_EQ(delivered(request("title", "")), c.error);
    }
}

}  // namespace
}  // namespace norvane
