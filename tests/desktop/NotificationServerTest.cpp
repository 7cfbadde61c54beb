#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxUserNotificationCenter.h"
#include "RealDesktop.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// dunst shows what it was given.
class NotificationServerTest : public RealDesktop {
 protected:
    // What dunst answers, in the text form of GVariant.
    std::string asked(const char* interface, const char* method, GVariant* arguments = nullptr) const {
        const auto answer = peer_.call("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                       interface, method, arguments);
        if (!answer) return "no answer";
        const std::unique_ptr<gchar, decltype(&g_free)> text(g_variant_print(answer.get(), TRUE), &g_free);
        return text.get();
    }
    bool comesToHave(const char* property, const std::string& value) const {
        return runUntil([&] {
            return asked("org.freedesktop.DBus.Properties", "Get",
                         g_variant_new("(ss)", kControl, property)) == "(<uint32 " + value + ">,)";
        });
    }
    bool deliver(const std::string& title, const std::string& body) {
        bool isOver = false;
        center_.add({"id", {title, body, NotificationSound::defaultSound}, 1ms}, [&](const auto& error) {
            EXPECT_EQ(error, std::nullopt);
            isOver = true;
        });
        return runUntil([&] { return isOver; });
    }

    static constexpr const char* kControl = "org.dunstproject.cmd0";

    LinuxMainQueue queue_;
    BusConnection connection_{queue_, bus_.address(), {.firstAttempt = 0ns}};
    LinuxUserNotificationCenter center_{queue_, connection_};
};

TEST_F(NotificationServerTest, ShowsWhatItWasGiven) {
    const auto dunst = start({"dunst"});
    ASSERT_TRUE(peer_.comesToHaveOwner("org.freedesktop.Notifications")) << "dunst does not start";
    std::optional<bool> isGranted;
    center_.requestAuthorization([&](bool granted) { isGranted = granted; });
    EXPECT_TRUE(runUntil([&] { return isGranted == true; }));
    ASSERT_TRUE(deliver("Storage Warning", "<b>Less than 20 GB</b> & \"falling\" \xE2\x80\x93 1 < 2"));
    ASSERT_TRUE(deliver("Battery Warning", "Battery has dropped below 20%."));
    EXPECT_TRUE(comesToHave("displayedLength", "2")) << "none takes the place of another";
    EXPECT_EQ(asked(kControl, "NotificationCloseAll"), "()");
    ASSERT_TRUE(comesToHave("historyLength", "2"));
    const std::string history = asked(kControl, "NotificationListHistory");
    // dunst keeps the body as markup, since it is markup that it asked for.
    for (const char* const words :
         {"'appname': <'Norvane'>", "'summary': <'Battery Warning'>", "'summary': <'Storage Warning'>",
          "'body': <'Battery has dropped below 20%.'>",
          "'body': <'&lt;b&gt;Less than 20 GB&lt;/b&gt; &amp; \"falling\" \xE2\x80\x93 1 &lt; 2'>"})
        EXPECT_NE(history.find(words), std::string::npos) << words << " is not in " << history;
}

}  // namespace
}  // namespace norvane
