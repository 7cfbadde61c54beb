#include <gtest/gtest.h>

#include "platform/linux/NotificationText.h"

namespace norvane {
namespace {

TEST(NotificationText, DescribesAnErrorInOneLineWhateverAPeerSays) {
    const std::string long499(499, 'x');
    for (const auto& [message, want] : std::vector<std::pair<std::string, std::string>>{
             {"GDBus.Error:org.example.Busy: It is\n busy.", "It is busy."},
             {"GDBus.Error:org.example\n.Busy: ", "org.example .Busy"},
             {"GDBus.Error:: ", "Unknown error"},
             {" \n", "Unknown error"},
             {"\xc3(", "\xef\xbf\xbd("},
             {long499 + "\xc3\xa9", long499},
         }) {
        GError* const error = g_error_new_literal(G_IO_ERROR, G_IO_ERROR_DBUS_ERROR, message.c_str());
        EXPECT_EQ(describedError(*error), want);
        g_error_free(error);
    }
}

}  // namespace
}  // namespace norvane
