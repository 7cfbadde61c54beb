#include "platform/linux/AutostartEntry.h"

#include <gtest/gtest.h>

#include "platform/linux/AutostartSurroundings.h"

namespace norvane {
namespace {

bool startsAmong(const std::vector<std::string>& desktops, const std::string& text) {
    return AutostartEntry::parse(text).isStarted(
        desktops, [](const std::string& program) { return program == "there" || program == "/a b"; });
}

// What names a program, and that others read an entry as we do, is in tests/fuzz.
TEST(AutostartEntry, IsStartedUnlessOneOfTheKeysSaysOtherwise) {
    const std::string whole = "[Desktop Entry]\nType=Application\nExec=norvane\n";
    for (const char* const started :
         {"", "Hidden=yes\n", "Hidden[de]=true\n", "hidden=true\n", "#Hidden=true\n", "[\nHidden=true\n",
          "[Desktop Action new]\nHidden=true\n",
          "X-GNOME-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n", "OnlyShowIn=KDE;GNOME;\n",
          "NotShowIn=KDE;\n", "OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n", "NotShowIn=GNOME\\;ubuntu\n",
          "NotShowIn=GN\\sOME;u\\buntu\n", "TryExec=/a\\sb\n", "TryExec=\n"})
        EXPECT_TRUE(startsAmong({"ubuntu", "GNOME"}, whole + started)) << started;
    for (const char* const kept :
         {"Hidden=1\n", " \tHidden  =  true \t\r\n", "[Other]\n[Desktop Entry]\nHidden=true\n",
          "X-MATE-Autostart-enabled=false\nX-GNOME-Autostart-enabled=true\n", "OnlyShowIn=KDE;MATE\n",
          "OnlyShowIn=\n", "NotShowIn=GNOME\n", "OnlyShowIn=GNOME;\nNotShowIn=ubuntu;\n", "TryExec=gone\n",
          "Type=Link\n", "Exec=\n", "\n=\n==\n]\nHidden\n\\\n\xFF=\xFE\nHidden=true\n"})
        EXPECT_FALSE(startsAmong({"ubuntu", "GNOME"}, whole + kept)) << kept;
    EXPECT_TRUE(startsAmong({}, whole + "NotShowIn=GNOME\n")) << "no desktop is known";
    EXPECT_FALSE(startsAmong({}, whole + "OnlyShowIn=GNOME\n")) << "no desktop is known";
    EXPECT_FALSE(startsAmong({}, "[desktop entry]\nType=Application\nExec=norvane\n"));
    EXPECT_FALSE(startsAmong({}, AutostartEntry::deletedText()));
}

TEST(AutostartSurroundings, FollowTheRulesForBaseFolders) {
    using Texts = std::vector<std::string>;
    EXPECT_EQ(AutostartSurroundings::from({.xdgConfigHome = "c", .home = "/h"}).configHome, "/h/.config");
    EXPECT_EQ(AutostartSurroundings::from({.home = "h"}).configHome, "");
    EXPECT_EQ(AutostartSurroundings::from({}).configFolders, Texts{"/etc/xdg"});
    const auto all = AutostartSurroundings::from({.xdgConfigHome = "/c",
                                                  .home = "/h",
                                                  .xdgConfigDirs = "/b::a:/a:",
                                                  .xdgCurrentDesktop = "ubuntu:GNOME",
                                                  .path = ".:/bin:/usr/bin"});
    EXPECT_EQ(all.configHome, "/c");
    EXPECT_EQ(all.configFolders, (Texts{"/b", "/a"}));
    EXPECT_EQ(all.desktops, (Texts{"ubuntu", "GNOME"}));
    EXPECT_EQ(all.programFolders, (Texts{"/bin", "/usr/bin"}));
}

}  // namespace
}  // namespace norvane
