#include "platform/linux/MountInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

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
    const auto expect = [](const std::string& line, const Mount& want) {
        EXPECT_EQ(parseMountInfo("\nnonsense\n" + line + "\n\n"), std::vector<Mount>{want}) << line;
        EXPECT_EQ(parseMountInfo(line), std::vector<Mount>{want}) << line;
    };
    for (const char* more : {" rw,discard", " rw more and more", ""})
        expect(std::string("27 1 254:0 / / rw shared:1 master:2 new:x - ext4 /dev/vda") + more,
               {27, 1, {254, 0}, "/", "/", false, "ext4", "/dev/vda"});
    expect("30 27 0:25 / /mnt/a rw shared:5 - tmpfs  rw",
           {30, 27, {0, 25}, "/", "/mnt/a", false, "tmpfs", ""});
    expect("30 27 0:25 / /mnt/a rw  - tmpfs none rw",
           {30, 27, {0, 25}, "/", "/mnt/a", false, "tmpfs", "none"});
    expect("30 27 8:1 /sub /mnt/a ro,nosuid - ext4 /dev/sda1 rw",
           {30, 27, {8, 1}, "/sub", "/mnt/a", true, "ext4", "/dev/sda1"});
    expect("30 27 8:1 / /mnt/a rw,nosuid - ext4 /dev/sda1 ro,errors=remount-ro",
           {30, 27, {8, 1}, "/", "/mnt/a", true, "ext4", "/dev/sda1"});
    expect("30 27 8:1 / /mnt/a rw,rox - ext4 /dev/sda1 rw,errors=remount-ro",
           {30, 27, {8, 1}, "/", "/mnt/a", false, "ext4", "/dev/sda1"});
    expect("30 27 0:40 /my\\040root /media/ada/My\\040\\134\\011\\012Stick#1 rw - cifs //nas/a\\040b\\043 rw",
           {30, 27, {0, 40}, "/my root", "/media/ada/My \\\t\nStick#1", false, "cifs", "//nas/a b#"});
    expect(R"(30 27 8:1 / /m/\04/\888/\0401\777\000\ rw - ext4 \04 rw)",
           {30, 27, {8, 1}, "/", R"(/m/\04/\888/ 1\777\000\)", false, "ext4", R"(\04)"});
    expect("30 27 8:1 / /m/\xff\xfe\x01 rw - ext4 \x80 rw",
           {30, 27, {8, 1}, "/", "/m/\xff\xfe\x01", false, "ext4", "\x80"});
}

TEST(MountInfo, SkipsWhatIsNoMount) {
    const std::string device = " - ext4 /dev/sda1 rw";
    for (const std::string& line :
         {" "s, "-"s, "30 27 8:1 / /a rw"s, "30 27 8:1 / /a rw - "s, "30 27 8:1 / /a rw ext4 /dev/sda1 rw"s,
          "x 27 8:1 / /a rw" + device, "30 -1 8:1 / /a rw" + device, "30 27 8 / /a rw" + device,
          "30 27 8: / /a rw" + device, "30 27 8:4294967296 / /a rw" + device, "30 27 8:1:1 / /a rw" + device,
          "30 27 8:1 / a rw" + device, "30  27 8:1 / /a rw" + device, " 30 27 8:1 / /a rw" + device,
          "30 27 8:1 /  rw" + device, "30 27 8:1 / /a\0b rw"s + device,
          "99999999999999999999 27 8:1 / /a rw" + device, std::string(100'000, '\0')}) {
        EXPECT_EQ(pointsIn(line + "\n31 27 8:2 / /good rw - ext4 /dev/sda2 rw\n"),
                  std::vector<std::string>{"/good"})
            << line;
    }
}

TEST(MountInfo, LeavesOutWhatOthersWereMountedOver) {
    // Each mount as its id, its parent's and its place.
    const auto expect = [](const char* name, const std::vector<std::string>& mounts,
                           const std::vector<std::string>& want) {
        std::string text = "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n";
        for (const std::string& mount : mounts) {
            const std::size_t place = mount.find('/');
            text += mount.substr(0, place) + "8:2 / " + mount.substr(place) + " rw - ext4 /dev/sda2 rw\n";
        }
        EXPECT_EQ(pointsIn(text), want) << name;
    };
    expect("the same folder", {"2 1 /a", "3 1 /b", "4 2 /a"}, {"/", "/b", "/a"});
    expect("a new root", {"2 1 /", "3 2 /b"}, {"/", "/b"});
    expect("a folder above, with all that lies there", {"2 1 /a/b", "3 2 /a/b/c", "4 1 /a", "5 4 /a/d"},
           {"/", "/a", "/a/d"});
    expect("what lay in a covered folder", {"2 1 /a", "3 2 /a/b", "4 2 /a"}, {"/", "/a"});
    expect("a name that merely begins alike", {"2 1 /ab/c", "3 1 /a"}, {"/", "/ab/c", "/a"});
    expect("an older mount above", {"2 1 /a", "3 1 /a/b"}, {"/", "/a", "/a/b"});
}

TEST(MountInfo, ManyAndLongLinesAreBorne) {
    std::string many;
    std::string onOneFolder;
    for (int i = 0; i < 100'000; ++i) {
        const std::string number = std::to_string(i + 2);
        many += number + " 1 8:1 / /m/" + number + " rw - ext4 /dev/sda1 rw\n";
        onOneFolder += number + " 1 8:1 / /m rw - ext4 /dev/sda1 rw\n";
    }
    EXPECT_EQ(parseMountInfo(many).size(), 100'000u);
    EXPECT_EQ(parseMountInfo(onOneFolder).size(), 1u);

    std::string deep = "/a";
    for (int i = 0; i < 500'000; ++i)
        deep += "/a";
    EXPECT_EQ(pointsIn("2 1 8:1 / " + deep + " rw - ext4 /dev/sda1 rw\n3 1 8:1 / /a rw - ext4 /dev/sda1 rw"),
              std::vector<std::string>{"/a"});
    EXPECT_TRUE(parseMountInfo(std::string(1'000'000, ' ')).empty());
    EXPECT_TRUE(parseMountInfo("2 1 8:1 / " + deep).empty());
}

}  // namespace
}  // namespace norvane
