#include "platform/linux/AutostartEntry.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/linux/AutostartSurroundings.h"

namespace norvane {
namespace {

using Texts = std::vector<std::string>;

constexpr const char* kWhole = "[Desktop Entry]\nType=Application\nExec=norvane\n";

bool startsAmong(const Texts& desktops, const std::string& text) {
    return AutostartEntry::parse(text).isStarted(
        desktops, [](const std::string& program) { return program == "there" || program == "/a b"; });
}

TEST(AutostartEntry, IsStartedUnlessOneOfTheKeysSaysOtherwise) {
    struct Case {
        const char* name;
        const char* lines;
        bool isStarted;
    };
    const std::vector<Case> cases = {
        {"nothing more", "", true},
        {"deleted", "Hidden=true\n", false},
        {"deleted, as it was once written", "Hidden=1\n", false},
        {"not deleted", "Hidden=false\n", true},
        {"no boolean", "Hidden=yes\n", true},
        {"blanks around", " \tHidden  =  true \t\n", false},
        {"a carriage return at the end", "Hidden=true\r\n", false},
        {"the last line without its end", "Hidden=true", false},
        {"in another language", "Hidden[de]=true\n", true},
        {"another case", "hidden=true\n", true},
        {"a comment", "#Hidden=true\n", true},
        {"in another group", "[Desktop Action new]\nHidden=true\n", true},
        {"in the group's second half", "[Other]\n[Desktop Entry]\nHidden=true\n", false},
        {"the last one counts", "Hidden=true\nHidden=false\n", true},
        {"off for one desktop", "X-GNOME-Autostart-enabled=false\n", false},
        {"on for it", "X-GNOME-Autostart-enabled=true\n", true},
        {"off for another", "X-MATE-Autostart-enabled=false\n", false},
        {"on for one and off for another", "X-MATE-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n",
         false},
        {"off once", "X-GNOME-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n", true},
        {"only where we are", "OnlyShowIn=KDE;GNOME;\n", true},
        {"only elsewhere", "OnlyShowIn=KDE;MATE\n", false},
        {"only nowhere", "OnlyShowIn=\n", false},
        {"not where we are", "NotShowIn=GNOME\n", false},
        {"not elsewhere", "NotShowIn=KDE;\n", true},
        {"not in one of ours, but in a more particular one", "OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n", true},
        {"in one of ours, but not in a more particular one", "OnlyShowIn=GNOME;\nNotShowIn=ubuntu;\n", false},
        {"a name with a semicolon", "NotShowIn=GNOME\\;ubuntu\n", true},
        {"a name with an escape", "NotShowIn=GN\\sOME;u\\buntu\n", true},
        {"a program that is there", "TryExec=there\n", true},
        {"one with a blank in its name", "TryExec=/a\\sb\n", true},
        {"one that is not", "TryExec=gone\n", false},
        {"none", "TryExec=\n", true},
        {"a page", "Type=Link\n", false},
        {"without a command", "Exec=\n", false},
        {"lines that are none", "\n=\n==\n]\nHidden\n\\\n\xFF=\xFE\nHidden=true\n", false},
        {"half a heading", "[\nHidden=true\n", true},
    };
    for (const Case& each : cases)
        EXPECT_EQ(startsAmong({"ubuntu", "GNOME"}, std::string(kWhole) + each.lines), each.isStarted)
            << each.name;
    EXPECT_TRUE(startsAmong({}, std::string(kWhole) + "NotShowIn=GNOME\n")) << "no desktop is known";
    EXPECT_FALSE(startsAmong({}, std::string(kWhole) + "OnlyShowIn=GNOME\n")) << "no desktop is known";
    for (const char* const garbage :
         {"", "Type=Application\nExec=norvane\n", "[Desktop Entry]\nExec=norvane\n",
          "\x7f"
          "ELF\x02\x01",
          "[desktop entry]\nType=Application\nExec=norvane\n"}) {
        EXPECT_FALSE(startsAmong({"GNOME"}, garbage)) << garbage;
    }
}

// As the desktops read it, most of them by GLib.
TEST(AutostartEntry, NamesAnyProgramSoThatDesktopsStartJustThat) {
    for (const std::string program :
         {"/usr/bin/norvane", "/opt/my programs/norvane", "/a\"b`c$d\\e", "/100%/%u", "/tab\tnew\nline\rend",
          "/;#&|<>*?()~'", "/trailing ", "/\xC3\xA4\xE2\x82\xAC", "/\\n\\s\\\\", "/"}) {
        const auto text = AutostartEntry::textStarting(program);
        ASSERT_TRUE(text) << program;
        EXPECT_TRUE(startsAmong({"GNOME"}, *text)) << *text;

        const std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> file(g_key_file_new(),
                                                                          &g_key_file_unref);
        ASSERT_TRUE(
            g_key_file_load_from_data(file.get(), text->c_str(), text->size(), G_KEY_FILE_NONE, nullptr));
        const std::unique_ptr<gchar, decltype(&g_free)> exec(
            g_key_file_get_string(file.get(), "Desktop Entry", "Exec", nullptr), &g_free);
        ASSERT_TRUE(exec) << *text;
        EXPECT_EQ(AutostartEntry::parse(*text).exec, exec.get());
        gchar** parts = nullptr;
        ASSERT_TRUE(g_shell_parse_argv(exec.get(), nullptr, &parts, nullptr)) << *text;
        const std::unique_ptr<gchar*, decltype(&g_strfreev)> arguments(parts, &g_strfreev);
        std::string doubled;
        for (const char each : program)
            doubled += each == '%' ? std::string("%%") : std::string(1, each);
        EXPECT_EQ(parts[0], doubled) << *text;
        EXPECT_EQ(parts[1], nullptr) << *text;
    }
    for (const std::string program : {"", "norvane", "./norvane", "/a=b", "/\xFF"})
        EXPECT_FALSE(AutostartEntry::textStarting(program)) << program;
    EXPECT_FALSE(startsAmong({"GNOME"}, AutostartEntry::deletedText()));
}

TEST(AutostartSurroundings, FollowTheRulesForBaseFolders) {
    using Variables = AutostartSurroundings::Variables;
    const auto homeOf = [](const Variables& variables) {
        return AutostartSurroundings::from(variables).configHome;
    };
    EXPECT_EQ(homeOf({.xdgConfigHome = "/c", .home = "/h"}), "/c");
    EXPECT_EQ(homeOf({.xdgConfigHome = "c", .home = "/h"}), "/h/.config");
    EXPECT_EQ(homeOf({.xdgConfigHome = "", .home = "/h"}), "/h/.config");
    EXPECT_EQ(homeOf({.home = "h"}), "");
    EXPECT_EQ(homeOf({}), "");

    const auto none = AutostartSurroundings::from({});
    EXPECT_EQ(none.configFolders, Texts{"/etc/xdg"});
    EXPECT_EQ(none.desktops, Texts{});
    EXPECT_EQ(AutostartSurroundings::from({.xdgConfigDirs = ""}).configFolders, Texts{"/etc/xdg"});
    const auto all = AutostartSurroundings::from(
        {.xdgConfigDirs = "/b::a:/a:", .xdgCurrentDesktop = "ubuntu:GNOME", .path = ".:/bin:/usr/bin"});
    EXPECT_EQ(all.configFolders, (Texts{"/b", "/a"}));
    EXPECT_EQ(all.desktops, (Texts{"ubuntu", "GNOME"}));
    EXPECT_EQ(all.programFolders, (Texts{"/bin", "/usr/bin"}));
}

}  // namespace
}  // namespace norvane
