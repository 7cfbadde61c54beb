#include "platform/linux/AutostartEntry.h"

#include <gtest/gtest.h>

#include "platform/linux/AutostartSurroundings.h"

namespace norvane {
namespace {

using Texts = std::vector<std::string>;

bool startsAmong(const Texts& desktops, const std::string& text) {
    return AutostartEntry::parse(text).isStarted(
        desktops, [](const std::string& program) { return program == "there" || program == "/a b"; });
}

TEST(AutostartEntry, IsStartedUnlessOneOfTheKeysSaysOtherwise) {
    const std::string whole = "[Desktop Entry]\nType=Application\nExec=norvane\n";
    struct Case {
        const char* lines;
        bool isStarted;
    };
    for (const auto& [lines, isStarted] : std::vector<Case>{
             {"", true},
             {"Hidden=true\n", false},
             {"Hidden=1\n", false},  // as it was once written
             {"Hidden=false\n", true},
             {"Hidden=yes\n", true},
             {" \tHidden  =  true \t\r\n", false},
             {"Hidden=true", false},
             {"Hidden[de]=true\n", true},
             {"hidden=true\n", true},
             {"#Hidden=true\n", true},
             {"[Desktop Action new]\nHidden=true\n", true},
             {"[Other]\n[Desktop Entry]\nHidden=true\n", false},
             {"Hidden=true\nHidden=false\n", true},
             {"X-GNOME-Autostart-enabled=false\n", false},
             {"X-GNOME-Autostart-enabled=true\n", true},
             {"X-MATE-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n", false},
             {"X-GNOME-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n", true},
             {"OnlyShowIn=KDE;GNOME;\n", true},
             {"OnlyShowIn=KDE;MATE\n", false},
             {"OnlyShowIn=\n", false},
             {"NotShowIn=GNOME\n", false},
             {"NotShowIn=KDE;\n", true},
             {"OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n", true},  // the more particular one counts
             {"OnlyShowIn=GNOME;\nNotShowIn=ubuntu;\n", false},
             {"NotShowIn=GNOME\\;ubuntu\n", true},
             {"NotShowIn=GN\\sOME;u\\buntu\n", true},
             {"TryExec=there\n", true},
             {"TryExec=/a\\sb\n", true},
             {"TryExec=gone\n", false},
             {"TryExec=\n", true},
             {"Type=Link\n", false},
             {"Exec=\n", false},
             {"\n=\n==\n]\nHidden\n\\\n\xFF=\xFE\nHidden=true\n", false},
             {"[\nHidden=true\n", true},
         }) {
        EXPECT_EQ(startsAmong({"ubuntu", "GNOME"}, whole + lines), isStarted) << lines;
    }
    EXPECT_TRUE(startsAmong({}, whole + "NotShowIn=GNOME\n")) << "no desktop is known";
    EXPECT_FALSE(startsAmong({}, whole + "OnlyShowIn=GNOME\n")) << "no desktop is known";
    for (const char* const garbage :
         {"", "Type=Application\nExec=norvane\n", "[Desktop Entry]\nExec=norvane\n",
          "[desktop entry]\nType=Application\nExec=norvane\n"}) {
        EXPECT_FALSE(startsAmong({"GNOME"}, garbage)) << garbage;
    }
    EXPECT_FALSE(startsAmong({"GNOME"}, AutostartEntry::deletedText()));
}

// That others read it so is among what must hold for any bytes, in tests/fuzz.
TEST(AutostartEntry, NamesAnyProgramThatCanBeNamed) {
    for (const std::string program :
         {"/opt/my programs/norvane", "/a\"b`c$d\\e", "/100%/%u", "/tab\tnew\nline\rend "}) {
        const auto text = AutostartEntry::textStarting(program);
        ASSERT_TRUE(text) << program;
        EXPECT_TRUE(startsAmong({"GNOME"}, *text)) << *text;
    }
    for (const std::string program : {"", "norvane", "./norvane", "/a=b", "/\xFF"})
        EXPECT_FALSE(AutostartEntry::textStarting(program)) << program;
}

TEST(AutostartSurroundings, FollowTheRulesForBaseFolders) {
    using Surroundings = AutostartSurroundings;
    EXPECT_EQ(Surroundings::from({.xdgConfigHome = "/c", .home = "/h"}).configHome, "/c");
    EXPECT_EQ(Surroundings::from({.xdgConfigHome = "c", .home = "/h"}).configHome, "/h/.config");
    EXPECT_EQ(Surroundings::from({.xdgConfigHome = "", .home = "/h"}).configHome, "/h/.config");
    EXPECT_EQ(Surroundings::from({.home = "h"}).configHome, "");
    const auto none = Surroundings::from({});
    EXPECT_EQ(none.configHome, "");
    EXPECT_EQ(none.configFolders, Texts{"/etc/xdg"});
    EXPECT_EQ(none.desktops, Texts{});
    EXPECT_EQ(Surroundings::from({.xdgConfigDirs = ""}).configFolders, Texts{"/etc/xdg"});
    const auto all = Surroundings::from(
        {.xdgConfigDirs = "/b::a:/a:", .xdgCurrentDesktop = "ubuntu:GNOME", .path = ".:/bin:/usr/bin"});
    EXPECT_EQ(all.configFolders, (Texts{"/b", "/a"}));
    EXPECT_EQ(all.desktops, (Texts{"ubuntu", "GNOME"}));
    EXPECT_EQ(all.programFolders, (Texts{"/bin", "/usr/bin"}));
}

}  // namespace
}  // namespace norvane
