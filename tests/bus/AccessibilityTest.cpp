#include "platform/linux/LinuxAccessibility.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "BusPeer.h"
#include "linux/RunLoop.h"
#include "platform/linux/BusName.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "PrivateBus.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms};

constexpr const char* kBusDescription =
    "<node><interface name='org.a11y.Bus'><method name='GetAddress'><arg type='s' direction='out'/></method>"
    "</interface></node>";
constexpr const char* kStatusDescription =
    "<node><interface name='org.a11y.Status'><property name='IsEnabled' type='b' access='read'/>"
    "</interface></node>";
constexpr const char* kRegistryDescription =
    "<node><interface name='org.a11y.atspi.Socket'><method name='Embed'><arg type='(so)' direction='in'/>"
    "<arg type='(so)' direction='out'/></method></interface></node>";

// One part of the desktop's accessibility, under a name of its own on a bus.
class Service {
 public:
    Service(LinuxMainQueue& queue, const PrivateBus& bus, const char* name)
        : connection(queue, bus.address(), kAtOnce), name_(connection, name, [](bool) {}) {}

    bool isThere() {
        return runUntil([this] { return name_.isOwned(); });
    }

    BusConnection connection;
    std::vector<Cancellation> objects;

 private:
    BusName name_;
};

// A desktop whose accessibility bus is the session bus itself, and that counts who joins.
class AccessibilityTest : public testing::Test {
 protected:
    void startStatus(bool isEnabledAtFirst) {
        isEnabled = isEnabledAtFirst;
        status = std::make_unique<Service>(queue, bus, "org.a11y.Bus");
        status->objects.push_back(status->connection.exportObject(
            {.path = "/org/a11y/bus",
             .description = kBusDescription,
             .called = [this](std::string_view, GVariant*) { return g_variant_new("(s)", address.c_str()); },
             .read = [](std::string_view) -> GVariant* { return nullptr; }}));
        status->objects.push_back(status->connection.exportObject(
            {.path = "/org/a11y/bus",
             .description = kStatusDescription,
             .called = [](std::string_view, GVariant*) -> GVariant* { return nullptr; },
             .read = [this](std::string_view) { return g_variant_new_boolean(isEnabled); }}));
        ASSERT_TRUE(status->isThere());
    }
    void startRegistry() {
        registry = std::make_unique<Service>(queue, bus, "org.a11y.atspi.Registry");
        registry->objects.push_back(registry->connection.exportObject(
            {.path = "/org/a11y/atspi/accessible/root",
             .description = kRegistryDescription,
             .called =
                 [this](std::string_view, GVariant* arguments) {
                     const gchar* name = nullptr;
                     g_variant_get(arguments, "((&s&o))", &name, nullptr);
                     application = name;
                     ++joins;
                     return g_variant_new("((so))", "org.a11y.atspi.Registry",
                                          "/org/a11y/atspi/accessible/root");
                 },
             .read = [](std::string_view) -> GVariant* { return nullptr; }}));
        ASSERT_TRUE(registry->isThere());
    }
    void say(const char* changed) {
        status->connection.emit("/org/a11y/bus", "org.freedesktop.DBus.Properties", "PropertiesChanged",
                                g_variant_new_parsed(changed));
    }
    void sayEnabled(bool enabled) {
        isEnabled = enabled;
        say(enabled ? "('org.a11y.Status', {'IsEnabled': <true>}, @as [])"
                    : "('org.a11y.Status', {'IsEnabled': <false>}, @as [])");
    }
    bool joined(int times) {
        return runUntil([&] { return joins == times; });
    }

    PrivateBus bus;
    LinuxMainQueue queue;
    LinuxMonotonicClock clock;
    AccessibleSurfaces surfaces;
    bool isEnabled = false;
    int joins = 0;
    std::string address = bus.address();
    std::string application;
    std::unique_ptr<Service> status;
    std::unique_ptr<Service> registry;
    BusConnection session{queue, bus.address(), kAtOnce};
    std::unique_ptr<LinuxAccessibility> accessibility =
        std::make_unique<LinuxAccessibility>(session, queue, clock, surfaces, [] { return 1.0; });
};

TEST_F(AccessibilityTest, FollowsWhetherAnybodyWantsToBeTold) {
    startRegistry();
    startStatus(false);
    ASSERT_TRUE(runUntil([&] { return session.state() == BusConnection::State::connected; }));
    EXPECT_FALSE(accessibility->isOn());
    sayEnabled(true);
    ASSERT_TRUE(joined(1));
    const BusPeer peer(bus.address());
    EXPECT_TRUE(peer.hasOwner(application.c_str()));
    sayEnabled(false);
    EXPECT_TRUE(peer.comesToHaveOwner(application.c_str(), false) ||
                runUntil([&] { return !peer.hasOwner(application.c_str()); }))
        << "the connection is closed";
    EXPECT_FALSE(accessibility->isOn());
    sayEnabled(true);
    ASSERT_TRUE(joined(2));
    say("('org.a11y.Status', {'IsEnabled': <'garbage'>}, @as [])");
    say("('org.a11y.Status', @a{sv} {}, ['IsEnabled'])");
    startRegistry();
    ASSERT_TRUE(joined(3)) << "another registry";
    EXPECT_TRUE(accessibility->isOn());
    status.reset();
    EXPECT_TRUE(runUntil([&] { return !accessibility->isOn(); })) << "whoever said so is gone";
    startStatus(true);
    EXPECT_TRUE(joined(4)) << "and comes again";
}

TEST_F(AccessibilityTest, BearsABusThatIsNone) {
    for (const char* const bad : {"", "nonsense", "unix:path=/nowhere/at/all"}) {
        address = bad;
        startStatus(true);
        ASSERT_TRUE(runUntil([&] { return accessibility->isOn(); })) << bad;
        status.reset();
        ASSERT_TRUE(runUntil([&] { return !accessibility->isOn(); })) << bad;
    }
}

// What a client of another kind than ours may ask: nothing of it may bring anything down.
TEST_F(AccessibilityTest, AnswersOddQuestions) {
    startRegistry();
    startStatus(true);
    ASSERT_TRUE(joined(1));
    struct Question {
        const char* path;
        const char* interface;
        const char* method;
        const char* arguments;
        const char* answer;  // null for an error
    };
    constexpr const char* kAccessible = "org.a11y.atspi.Accessible";
    constexpr const char* kRoot = "/org/a11y/atspi/accessible/root";
    constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
    for (const Question& q : {
             Question{kRoot, kAccessible, "GetRoleName", "()", "('application',)"},
             Question{kRoot, kAccessible, "GetChildAtIndex", "(-1,)", "(('', '/org/a11y/atspi/null'),)"},
             Question{kRoot, kAccessible, "GetChildAtIndex", "(2147483647,)",
                      "(('', '/org/a11y/atspi/null'),)"},
             Question{kRoot, kAccessible, "GetIndexInParent", "()", "(-1,)"},
             Question{kRoot, kProperties, "Get", "('org.a11y.atspi.Application', 'ToolkitName')",
                      "(<'Norvane'>,)"},
             Question{kRoot, kProperties, "Get", "('org.a11y.atspi.Value', 'CurrentValue')", nullptr},
             Question{kRoot, "org.a11y.atspi.Action", "DoAction", "(0,)", nullptr},
             Question{"/org/a11y/atspi/accessible/99", kAccessible, "GetRole", "()", nullptr},
             Question{"/org/a11y/atspi/accessible/0", kAccessible, "GetRole", "()", nullptr},
             Question{"/org/a11y/atspi/accessible/99999999999999999999999", kAccessible, "GetRole", "()",
                      nullptr},
             Question{"/org/a11y/atspi/accessible/1/2", kAccessible, "GetRole", "()", nullptr},
         }) {
        std::optional<std::string> answer;
        const Cancellation asked =
            session.call({.name = application.c_str(),
                          .path = q.path,
                          .interface = q.interface,
                          .method = q.method,
                          .parameters = g_variant_new_parsed(q.arguments)},
                         [&](GVariant* value, const GError*) {
                             gchar* const text = value != nullptr ? g_variant_print(value, FALSE) : nullptr;
                             answer = text != nullptr ? text : "error";
                             g_free(text);
                         });
        ASSERT_TRUE(runUntil([&] { return answer.has_value(); })) << q.path << q.method;
        EXPECT_EQ(*answer, q.answer != nullptr ? q.answer : "error") << q.path << ' ' << q.method;
    }
}

}  // namespace
}  // namespace norvane
