#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/NotificationText.h"

namespace norvane {
namespace {

std::string described(const std::string& message) {
    const auto release = [](GError* error) { g_error_free(error); };
    const std::unique_ptr<GError, decltype(release)> error(
        g_error_new_literal(G_IO_ERROR, G_IO_ERROR_DBUS_ERROR, message.c_str()), release);
    return describedError(*error);
}

TEST(NotificationText, DescribesAnErrorInOneLineWhateverAPeerSays) {
    struct Case {
        const char* name;
        std::string message;
        std::string want;
    };
    const std::string long499(499, 'x');
    for (const Case& c : {
             Case{"a peer's error", "GDBus.Error:org.example.Busy: It is\n busy.", "It is busy."},
             Case{"an error of our own", "Timeout was reached", "Timeout was reached"},
             Case{"a name without a text", "GDBus.Error:org.example.Busy: ", "org.example.Busy"},
             Case{"a name in two lines", "GDBus.Error:org.example\n.Busy: ", "org.example .Busy"},
             Case{"neither a name nor a text", "GDBus.Error:: ", "Unknown error"},
             Case{"nothing", "", "Unknown error"},
             Case{"blanks", " \n", "Unknown error"},
             Case{"bytes that are no text", "\xc3(", "\xef\xbf\xbd("},
             Case{"a character across the bound", long499 + "\xc3\xa9", long499},
         }) {
        EXPECT_EQ(described(c.message), c.want) << c.name;
    }
}

TEST(NotificationText, ShowsMarkupLiterally) {
    EXPECT_EQ(escapedMarkup("<b>a & b</b> &amp;"), "&lt;b&gt;a &amp; b&lt;/b&gt; &amp;amp;");
}

}  // namespace
}  // namespace norvane
