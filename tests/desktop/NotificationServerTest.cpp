#include <gtest/gtest.h>

#include <string>

#include "bus/BusPeer.h"
#include "bus/ChildProcess.h"
#include "bus/PrivateBus.h"
#include "linux/RunLoop.h"
#include "platform/linux/GVariantPointer.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxUserNotificationCenter.h"
#include "windows/Xvfb.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kServer = "org.freedesktop.Notifications";
constexpr const char* kServerPath = "/org/freedesktop/Notifications";
constexpr const char* kControl = "org.dunstproject.cmd0";

// dunst, on a screen and a bus of its own, with the settings that it comes with.
class NotificationServerTest : public testing::Test {
 protected:
    NotificationServerTest()
        : connection_(queue_, bus_.address(), {.firstAttempt = 0ns}), center_(queue_, connection_) {}

    void SetUp() override {
        ASSERT_TRUE(xvfb_.isRunning()) << "Xvfb does not start";
        dunst_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{"dunst"},
            ChildProcess::Environment{{"DISPLAY", xvfb_.display()},
                                      {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
                                      {"XDG_CONFIG_HOME", bus_.folder()}});
        ASSERT_TRUE(peer_.comesToHaveOwner(kServer)) << "dunst does not start";
    }

    // The number that a property of dunst's control interface has.
    guint32 number(const char* property) const {
        const auto answer = peer_.call(kServer, kServerPath, "org.freedesktop.DBus.Properties", "Get",
                                       g_variant_new("(ss)", kControl, property));
        if (!answer) return G_MAXUINT32;
        GVariant* boxed = nullptr;
        g_variant_get(answer.get(), "(v)", &boxed);
        const GVariantPointer value(boxed);
        EXPECT_TRUE(g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32)) << property;
        return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_UINT32) ? g_variant_get_uint32(value.get())
                                                                        : G_MAXUINT32;
    }

    // What dunst says of a notification that it has shown, the newest being 0: what `dunstctl history`
    // prints.
    std::string history(gsize place, const char* key) const {
        const auto answer = peer_.call(kServer, kServerPath, kControl, "NotificationListHistory");
        if (!answer) return "no answer";
        const GVariantPointer list(g_variant_get_child_value(answer.get(), 0));
        if (place >= g_variant_n_children(list.get())) return "no such notification";
        const GVariantPointer entry(g_variant_get_child_value(list.get(), place));
        const GVariantPointer value(g_variant_lookup_value(entry.get(), key, G_VARIANT_TYPE_STRING));
        return value ? g_variant_get_string(value.get(), nullptr) : "no such text";
    }

    bool deliver(const std::string& title, const std::string& body) {
        bool isOver = false;
        center_.add({"id", {title, body, NotificationSound::defaultSound}, 1ms},
                    [&](const std::optional<std::string>& error) {
                        EXPECT_EQ(error, std::nullopt);
                        isOver = true;
                    });
        return runUntil([&] { return isOver; });
    }

    Xvfb xvfb_;
    PrivateBus bus_;
    BusPeer peer_{bus_.address()};
    std::unique_ptr<ChildProcess> dunst_;
    LinuxMainQueue queue_;
    BusConnection connection_;
    LinuxUserNotificationCenter center_;
};

TEST_F(NotificationServerTest, ShowsWhatItWasGiven) {
    std::optional<bool> isGranted;
    center_.requestAuthorization([&](bool granted) { isGranted = granted; });
    EXPECT_TRUE(runUntil([&] { return isGranted.has_value(); }));
    EXPECT_EQ(isGranted, true);

    const std::string body = "<b>Less than 20 GB</b> & \"falling\" \xE2\x80\x93 1 < 2";
    ASSERT_TRUE(deliver("Storage Warning", body));
    EXPECT_TRUE(runUntil([&] { return number("displayedLength") == 1; }));
    ASSERT_TRUE(deliver("Battery Warning", "Battery has dropped below 20%."));
    EXPECT_TRUE(runUntil([&] { return number("displayedLength") == 2; }))
        << "none takes the place of another";

    EXPECT_TRUE(peer_.call(kServer, kServerPath, kControl, "NotificationCloseAll"));
    ASSERT_TRUE(runUntil([&] { return number("historyLength") == 2; }));
    std::string bodies;
    for (const gsize place : {0U, 1U}) {
        EXPECT_EQ(history(place, "appname"), "Norvane");
        bodies += history(place, "summary") + ": " + history(place, "body") + '\n';
    }
    // dunst keeps the body as markup, since it is markup that it asked for.
    EXPECT_NE(bodies.find("Battery Warning: Battery has dropped below 20%.\n"), std::string::npos) << bodies;
    EXPECT_NE(
        bodies.find("Storage Warning: &lt;b&gt;Less than 20 GB&lt;/b&gt; &amp; \"falling\" \xE2\x80\x93 "
                    "1 &lt; 2\n"),
        std::string::npos)
        << bodies;
}

}  // namespace
}  // namespace norvane
