#include "platform/linux/LinuxUserNotificationCenter.h"

#include <gtest/gtest.h>

#include <thread>

#include "BusPeer.h"
#include "linux/RunLoop.h"
#include "MockService.h"
#include "platform/linux/LinuxMainQueue.h"
#include "PrivateBus.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms};
constexpr MockService::Place kServer{"org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                     "org.freedesktop.Notifications"};
constexpr const char* kPlainServer = R"({"capabilities": "body actions"})";
constexpr const char* kMarkupServer = R"({"capabilities": "body body-markup"})";

NotificationRequest request(const std::string& title, const std::string& body) {
    return {"id", {title, body, NotificationSound::none}, 0ns};
}

class NotificationCenterTest : public testing::Test {
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

    PrivateBus bus;
    LinuxMainQueue queue;
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxUserNotificationCenter> center;
};

TEST_F(NotificationCenterTest, SaysWhatTheServerIsToShow) {
    const MockService server(bus, kServer, "notification_daemon", kMarkupServer);
    EXPECT_EQ(delivered(request("CPU & <co>", "a < b & c > \"d\"")), "");
    NotificationRequest loud = request("Akku schwach \xE2\x9A\xA1", "");
    loud.content.sound = NotificationSound::defaultSound;
    EXPECT_EQ(delivered(loud), "");
    EXPECT_EQ(delivered(request("broken \xFF", "by\xC3")), "") << "not valid, but shown";
    EXPECT_EQ(server.calls("Notify"),
              (std::vector<std::string>{
                  "[<'Norvane'>, <uint32 0>, <'norvane'>, <'CPU & <co>'>, <'a &lt; b &amp; c &gt; \"d\"'>, "
                  "<@as []>, <{'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>}>, <-1>]",
                  "[<'Norvane'>, <uint32 0>, <'norvane'>, <'Akku schwach \xE2\x9A\xA1'>, <''>, <@as []>, "
                  "<{'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>, "
                  "'sound-name': <'message-new-instant'>}>, <-1>]",
                  "[<'Norvane'>, <uint32 0>, <'norvane'>, <'broken \xEF\xBF\xBD'>, <'by\xEF\xBF\xBD'>, "
                  "<@as []>, <{'desktop-entry': <'norvane'>, 'urgency': <byte 0x01>}>, <-1>]"}));
}

TEST_F(NotificationCenterTest, EscapesTheBodyForServersThatTakeMarkupAndAsksEachServerOnce) {
    for (const char* const capabilities : {kPlainServer, kMarkupServer, kPlainServer}) {
        const MockService server(bus, kServer, "notification_daemon", capabilities);
        EXPECT_EQ(delivered(request("one", "1 < 2")), "");
        EXPECT_EQ(delivered(request("two", "1 < 2")), "");
        EXPECT_EQ(server.calls("GetCapabilities").size(), 1U);
        const auto calls = server.calls("Notify");
        ASSERT_EQ(calls.size(), 2U);
        const std::string body = capabilities == kMarkupServer ? "<'1 &lt; 2'>" : "<'1 < 2'>";
        for (const std::string& call : calls)
            EXPECT_NE(call.find(body), std::string::npos) << call;
    }
}

TEST_F(NotificationCenterTest, AsksOnceForAllThatAreDueTogether) {
    const MockService server(bus, kServer, "notification_daemon", kPlainServer);
    int completions = 0;
    for (int count = 0; count < 5; ++count) {
        center->add(request("title", "body"), [&](const std::optional<std::string>& error) {
            EXPECT_FALSE(error);
            ++completions;
        });
    }
    EXPECT_TRUE(runUntil([&] { return completions == 5; }));
    EXPECT_EQ(server.calls("GetCapabilities").size(), 1U);
    EXPECT_EQ(server.calls("Notify").size(), 5U);
}

TEST_F(NotificationCenterTest, MayBeAskedOnAnyThread) {
    const MockService server(bus, kServer, "notification_daemon", kPlainServer);
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
    const MockService server(bus, kServer, "notification_daemon", kPlainServer);
    NotificationRequest late = request("late", "");
    late.timeInterval = 1h;
    center->add(late, [](const std::optional<std::string>&) { ADD_FAILURE(); });
    NotificationRequest soon = request("soon", "");
    soon.timeInterval = 20ms;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(delivered(soon), "");
    EXPECT_GE(std::chrono::steady_clock::now() - before, 20ms);
    EXPECT_EQ(server.calls("Notify").size(), 1U);
}

TEST_F(NotificationCenterTest, SaysThatThereIsNoServer) {
    EXPECT_EQ(delivered(request("title", "body")),
              "The name org.freedesktop.Notifications was not provided by any .service files");
    EXPECT_EQ(granted(), false);
    EXPECT_EQ(status(), NotificationAuthorization::notDetermined);
    const MockService server(bus, kServer, "notification_daemon", kPlainServer);
    EXPECT_EQ(delivered(request("title", "body")), "") << "now there is one";
    EXPECT_EQ(granted(), true);
    EXPECT_EQ(status(), NotificationAuthorization::authorized);
}

TEST_F(NotificationCenterTest, SaysThatThereIsNoBus) {
    for (const char* const address : {"", "unix:path=/nowhere/at/all"}) {
        begin(address);
        EXPECT_EQ(delivered(request("title", "body")),
                  *address == '\0' ? "There is no bus" : "Could not connect: No such file or directory");
        EXPECT_EQ(granted(), false);
        EXPECT_EQ(status(), NotificationAuthorization::notDetermined);
    }
}

TEST_F(NotificationCenterTest, HasTheServerStartedWhereTheBusKnowsHow) {
    bus.makeActivatable(kServer.name,
                        "/usr/bin/python3 -m dbusmock --session --template notification_daemon");
    EXPECT_EQ(status(), NotificationAuthorization::authorized);
    const BusPeer peer(bus.address());
    EXPECT_FALSE(peer.hasOwner(kServer.name)) << "the status starts nothing";
    EXPECT_EQ(delivered(request("title", "body")), "");
    EXPECT_EQ(granted(), true);
}

TEST_F(NotificationCenterTest, DoesNotWaitForAServerThatNeverAnswers) {
    const MockService server(bus, kServer);
    for (const char* const method : {"GetCapabilities", "GetServerInformation"})
        server.addMethod(method, "", "", "__import__('time').sleep(1000)");
    begin(bus.address(), {.delivery = 100ms, .authorization = 50ms});
    EXPECT_EQ(granted(), false);
    EXPECT_EQ(delivered(request("title", "body")), "Timeout was reached");
    EXPECT_EQ(status(), NotificationAuthorization::authorized) << "it is there, after all";
    center->add(request("title", "body"), [](const std::optional<std::string>&) { ADD_FAILURE(); });
    bool isLater = false;
    queue.async([&] { isLater = true; });
    EXPECT_TRUE(runUntil([&] { return isLater; }));
    center.reset();
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

TEST_F(NotificationCenterTest, BearsGarbage) {
    const MockService server(bus, kServer);
    server.addMethod("GetCapabilities", "", "s", "ret = 'body-markup'");
    server.addMethod("GetServerInformation", "", "i", "ret = 3");
    server.addMethod("Notify", "susssasa{sv}i", "u", "ret = 7");
    EXPECT_EQ(delivered(request("title", "1 < 2")), "");
    EXPECT_NE(server.calls("Notify").at(0).find("<'1 < 2'>"), std::string::npos);
    EXPECT_EQ(granted(), true) << "it answers";
    server.addMethod("Notify", "susssasa{sv}i", "s", "ret = 'seven'");
    EXPECT_EQ(delivered(request("title", "")),
              "Method \xE2\x80\x9Corg.freedesktop.Notifications.Notify\xE2\x80\x9D returned type "
              "\xE2\x80\x9C(s)\xE2\x80\x9D, but expected "
              "\xE2\x80\x9C(u)\xE2\x80\x9D");
}

TEST_F(NotificationCenterTest, PassesTheServersRefusalOnAsOneLine) {
    const MockService server(bus, kServer);
    server.addMethod("GetCapabilities", "", "as", "raise TypeError('none of your business')");
    struct Case {
        const char* python;
        std::string error;
    };
    for (const Case& c : {Case{R"('Too many\n\t\n of them\n')", "Too many of them"},
                          Case{"''", "org.norvane.Refused"}, Case{R"('\u00e4' * 1000)", [] {
                                                                      std::string umlauts;
                                                                      for (int count = 0; count < 250;
                                                                           ++count)
                                                                          umlauts += "\xC3\xA4";
                                                                      return umlauts;
                                                                  }()}}) {
        server.addMethod(
            "Notify", "susssasa{sv}i", "u",
            std::string("raise dbus.exceptions.DBusException(") + c.python + ", name='org.norvane.Refused')");
        EXPECT_EQ(delivered(request("title", "")), c.error);
    }
}

TEST_F(NotificationCenterTest, OutlivesServerAndBus) {
    {
        const MockService server(bus, kServer, "notification_daemon", kPlainServer);
        EXPECT_EQ(delivered(request("title", "body")), "");
        bus.kill();
        EXPECT_NE(delivered(request("title", "body")), "");
    }
    bus.start();
    const MockService server(bus, kServer, "notification_daemon", kMarkupServer);
    EXPECT_EQ(delivered(request("title", "1 < 2")), "");
    EXPECT_NE(server.calls("Notify").at(0).find("1 &lt; 2"), std::string::npos) << "asked anew";
}

}  // namespace
}  // namespace norvane
