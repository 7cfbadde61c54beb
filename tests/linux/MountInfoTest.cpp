#include "platform/linux/MountInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/linux/DesktopMountOptions.h"
#include "platform/linux/OsReleaseName.h"
#include "platform/linux/UdevData.h"

namespace norvane {
namespace {

using namespace std::string_literals;

std::vector<std::string> pointsIn(const std::string& text) {
    std::vector<std::string> points;
    for (const Mount& mount : parseMountInfo(text))
        points.push_back(mount.point);
    return points;
}

TEST(MountInfo, TakesALineApart) {
    const Mount root{27, 1, {254, 0}, "/", "/", false, "ext4", "/dev/vda"};
    struct Case {
        const char* name;
        std::string line;
        Mount want;
    };
    const std::vector<Case> cases{
        {"plain", "27 1 254:0 / / rw,relatime - ext4 /dev/vda rw,discard", root},
        {"with optional fields",
         "27 1 254:0 / / rw,relatime shared:1 master:2 new:x - ext4 /dev/vda rw,discard", root},
        {"with more fields to come", "27 1 254:0 / / rw - ext4 /dev/vda rw more and more", root},
        {"without the last field", "27 1 254:0 / / rw - ext4 /dev/vda", root},
        {"without a source",
         "30 27 0:25 / /mnt/a rw shared:5 - tmpfs  rw",
         {30, 27, {0, 25}, "/", "/mnt/a", false, "tmpfs", ""}},
        {"an empty optional field",
         "30 27 0:25 / /mnt/a rw  - tmpfs none rw",
         {30, 27, {0, 25}, "/", "/mnt/a", false, "tmpfs", "none"}},
        {"read-only mount",
         "30 27 8:1 /sub /mnt/a ro,nosuid - ext4 /dev/sda1 rw",
         {30, 27, {8, 1}, "/sub", "/mnt/a", true, "ext4", "/dev/sda1"}},
        {"read-only file system",
         "30 27 8:1 / /mnt/a rw,nosuid - ext4 /dev/sda1 ro,errors=remount-ro",
         {30, 27, {8, 1}, "/", "/mnt/a", true, "ext4", "/dev/sda1"}},
        {"neither",
         "30 27 8:1 / /mnt/a rw,rox - ext4 /dev/sda1 rw,errors=remount-ro",
         {30, 27, {8, 1}, "/", "/mnt/a", false, "ext4", "/dev/sda1"}},
        {"escapes",
         "30 27 0:40 /my\\040root /media/ada/My\\040\\134\\011\\012Stick#1 rw - cifs //nas/a\\040b\\043 rw",
         {30, 27, {0, 40}, "/my root", "/media/ada/My \\\t\nStick#1", false, "cifs", "//nas/a b#"}},
        {"what is no escape",
         R"(30 27 8:1 / /m/\04/\888/\0401\777\000\ rw - ext4 \04 rw)",
         {30, 27, {8, 1}, "/", R"(/m/\04/\888/ 1\777\000\)", false, "ext4", R"(\04)"}},
        {"bytes that are no text",
         "30 27 8:1 / /m/\xff\xfe\x01 rw - ext4 \x80 rw",
         {30, 27, {8, 1}, "/", "/m/\xff\xfe\x01", false, "ext4", "\x80"}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(parseMountInfo(c.line), std::vector<Mount>{c.want}) << c.name;
        EXPECT_EQ(parseMountInfo("\nnonsense\n" + c.line + "\n\n"), std::vector<Mount>{c.want}) << c.name;
    }
}

TEST(MountInfo, SkipsWhatIsNoMount) {
    for (const std::string& line : {""s,
                                    " "s,
                                    "-"s,
                                    "30 27 8:1 / /a rw"s,
                                    "30 27 8:1 / /a rw -"s,
                                    "30 27 8:1 / /a rw - "s,
                                    "30 27 8:1 / /a rw ext4 /dev/sda1 rw"s,
                                    "x 27 8:1 / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 -1 8:1 / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8 / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8: / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8:4294967296 / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8:1:1 / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8:1 / a rw - ext4 /dev/sda1 rw"s,
                                    "30  27 8:1 / /a rw - ext4 /dev/sda1 rw"s,
                                    " 30 27 8:1 / /a rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8:1 /  rw - ext4 /dev/sda1 rw"s,
                                    "30 27 8:1 / /a\0b rw - ext4 /dev/sda1 rw"s,
                                    "99999999999999999999 27 8:1 / /a rw - ext4 /dev/sda1 rw"s,
                                    std::string(100'000, '\0')}) {
        EXPECT_EQ(pointsIn(line + "\n31 27 8:2 / /good rw - ext4 /dev/sda2 rw\n"),
                  std::vector<std::string>{"/good"})
            << line;
    }
}

TEST(MountInfo, LeavesOutWhatOthersWereMountedOver) {
    const std::string root = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
    struct Case {
        const char* name;
        std::string text;
        std::vector<std::string> want;
    };
    const std::vector<Case> cases{
        {"the same folder",
         root + "2 1 8:2 / /a rw - ext4 /dev/sda2 rw\n"
                "3 1 8:3 / /b rw - ext4 /dev/sda3 rw\n"
                "4 2 0:9 / /a rw - tmpfs none rw\n",
         {"/", "/b", "/a"}},
        {"a new root",
         root + "2 1 0:9 / / rw - overlay none rw\n3 2 8:3 / /b rw - ext4 /dev/sda3 rw\n",
         {"/", "/b"}},
        {"a folder above, with all that lies there",
         root + "2 1 8:2 / /a/b rw - ext4 /dev/sda2 rw\n"
                "3 2 8:3 / /a/b/c rw - ext4 /dev/sda3 rw\n"
                "4 1 0:9 / /a rw - tmpfs none rw\n"
                "5 4 8:5 / /a/d rw - ext4 /dev/sda5 rw\n",
         {"/", "/a", "/a/d"}},
        {"what lay in a covered folder",
         root + "2 1 8:2 / /a rw - ext4 /dev/sda2 rw\n"
                "3 2 8:3 / /a/b rw - ext4 /dev/sda3 rw\n"
                "4 2 0:9 / /a rw - tmpfs none rw\n",
         {"/", "/a"}},
        {"a name that merely begins alike",
         root + "2 1 8:2 / /ab/c rw - ext4 /dev/sda2 rw\n3 1 0:9 / /a rw - tmpfs none rw\n",
         {"/", "/ab/c", "/a"}},
        {"an older mount above",
         root + "2 1 8:2 / /a rw - ext4 /dev/sda2 rw\n3 1 8:3 / /a/b rw - ext4 /dev/sda3 rw\n",
         {"/", "/a", "/a/b"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(pointsIn(c.text), c.want) << c.name;
}

TEST(MountInfo, ManyAndLongLinesAreBorne) {
    std::string many;
    for (int i = 0; i < 100'000; ++i)
        many += std::to_string(i + 2) + " 1 8:1 / /m/" + std::to_string(i) + " rw - ext4 /dev/sda1 rw\n";
    EXPECT_EQ(parseMountInfo(many).size(), 100'000u);

    std::string onOneFolder;
    for (int i = 0; i < 100'000; ++i)
        onOneFolder += std::to_string(i + 2) + " 1 8:1 / /m rw - ext4 /dev/sda1 rw\n";
    EXPECT_EQ(parseMountInfo(onOneFolder).size(), 1u);

    std::string deep = "/a";
    for (int i = 0; i < 500'000; ++i)
        deep += "/a";
    EXPECT_EQ(pointsIn("2 1 8:1 / " + deep + " rw - ext4 /dev/sda1 rw\n3 1 8:1 / /a rw - ext4 /dev/sda1 rw"),
              std::vector<std::string>{"/a"});
    EXPECT_TRUE(parseMountInfo(std::string(1'000'000, ' ')).empty());
    EXPECT_TRUE(parseMountInfo("2 1 8:1 / " + deep).empty());
}

TEST(DesktopMountOptions, AreReadByMountPoint) {
    const auto options = parseUtab(
        "SRC=/dev/sda2 TARGET=/data ROOT=/ OPTS=x-gvfs-hide,uhelper=udisks2\n"
        "ID=7 SRC=//nas/x TARGET=/srv/my\\040films OPTS=x-systemd.automount,x-gvfs-show\n"
        "SRC=/dev/sda3 TARGET=/other OPTS=x-gvfs-hidden,ax-gvfs-show ATTRS=x-gvfs-hide\n"
        "TARGET=/twice OPTS=x-gvfs-hide\n"
        "TARGET=/twice OPTS=x-gvfs-show\n"
        "TARGET= OPTS=x-gvfs-hide\n"
        "OPTS=x-gvfs-hide\n\n\xff\n");
    const std::unordered_map<std::string, DesktopMountOptions> want{
        {"/data", {true, false}},
        {"/srv/my films", {false, true}},
        {"/other", {false, false}},
        {"/twice", {false, true}},
    };
    EXPECT_EQ(options, want);
}

TEST(UdevData, HasLabelAndIgnoreMark) {
    struct Case {
        const char* text;
        UdevData want;
    };
    for (const Case& c : {
             Case{"", {}},
             Case{"S:disk/by-label/x\nE:ID_FS_LABEL=My_Stick\nE:ID_FS_LABEL_ENC=My\\x20Stick\n",
                  {"My Stick", false}},
             Case{"E:ID_FS_LABEL_ENC=\xc3\xa4\\x2f\\x5Cx\\xg0\\x2\\x00\\x",
                  {"\xc3\xa4/\\x\\xg0\\x2\\x00\\x", false}},
             Case{"E:ID_FS_LABEL_ENC=\nE:UDISKS_IGNORE=1\n", {std::nullopt, true}},
             Case{"E:UDISKS_IGNORE=0\nG:UDISKS_IGNORE=1\nE:UDISKS_IGNORE=11\n", {}},
         }) {
        EXPECT_EQ(parseUdevData(c.text), c.want) << c.text;
    }
}

TEST(OsReleaseName, IsUnquotedAsAShellDoes) {
    struct Case {
        const char* text;
        std::optional<std::string> want;
    };
    for (const Case& c : {
             Case{"", {}},
             Case{"PRETTY_NAME=\"A 1\"\nID=a\n", {}},
             Case{"PRETTY_NAME=\"A 1\"\nNAME=\"A System\"\nVERSION_NAME=x\n", "A System"},
             Case{"NAME=Plain", "Plain"},
             Case{"  NAME=Plain\t\r\n", "Plain"},
             Case{"NAME=Plain # not for people\n", "Plain"},
             Case{"#NAME=Old\nNAME='Single \\ \"q\"'\n", "Single \\ \"q\""},
             Case{R"(NAME="a \"b\" \$c \`d\` \\ \e")", R"(a "b" $c `d` \ \e)"},
             Case{R"(NAME=a\ b"c "'d')", "a bc d"},
             Case{"NAME=one\nNAME=two\n", "two"},
             Case{"NAME=\"\"\n", {}},
             Case{"NAME=\n", {}},
             Case{"NAME=\"open\n", {}},
             Case{"NAME=open\\", {}},
         }) {
        EXPECT_EQ(parseOsReleaseName(c.text), c.want) << c.text;
    }
}

}  // namespace
}  // namespace norvane
