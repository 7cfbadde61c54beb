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

TEST(MountInfo, TakesALineApartOrSkipsIt) {
    for (const char* more : {" rw,discard\n\n", " rw more and more", ""}) {
        const std::string line = "27 1 254:0 / / rw shared:1 master:2 new:x - ext4 /dev/vda";
        EXPECT_EQ(parseMountInfo("\nnonsense\n" + line + more),
                  (std::vector<Mount>{{27, 1, {254, 0}, "/", "/", false, "ext4", "/dev/vda"}}))
            << more;
    }
    const auto expect = [](const std::string& line, const char* root, const char* point, bool isReadOnly,
                           const char* type, const char* source) {
        const Mount want{30, 27, {8, 1}, root, point, isReadOnly, type, source};
        EXPECT_EQ(parseMountInfo("30 27 8:1 " + line), std::vector<Mount>{want}) << line;
    };
    expect("/ /a rw  - tmpfs  rw", "/", "/a", false, "tmpfs", "");
    expect("/sub /a ro,nosuid - ext4 /dev/sda1 rw", "/sub", "/a", true, "ext4", "/dev/sda1");
    expect("/ /a rw,rox - ext4 /dev/sda1 ro,errors=x", "/", "/a", true, "ext4", "/dev/sda1");
    expect("/ /a rw,rox - ext4 /dev/sda1 rw,errors=x-ro", "/", "/a", false, "ext4", "/dev/sda1");
    expect("/my\\040root /My\\040\\134\\011\\012Stick#1 rw - cifs //nas/a\\040b\\043 rw", "/my root",
           "/My \\\t\nStick#1", false, "cifs", "//nas/a b#");
    expect(R"(/ /m/\04/\888/\0401\777\000\ rw - ext4 \04 rw)", "/", R"(/m/\04/\888/ 1\777\000\)", false,
           "ext4", R"(\04)");
    expect("/ /m/\xff\xfe\x01 rw - ext4 \x80 rw", "/", "/m/\xff\xfe\x01", false, "ext4", "\x80");

    EXPECT_EQ(pointsIn(std::string(100'000, '\0') +
                       "\n30 27 8:1 / /a rw\n30 27 8:1 / /a rw - \n30 27 8:1 / /a rw ext4 /dev/sda1 rw"),
              std::vector<std::string>());
    for (const std::string& begin :
         {" "s, "x 27 8:1 / /a rw"s, "30 -1 8:1 / /a rw"s, "30 27 8 / /a rw"s, "30 27 8: / /a rw"s,
          "30 27 8:4294967296 / /a rw"s, "30 27 8:1:1 / /a rw"s, "30 27 8:1 / a rw"s, "30  27 8:1 / /a rw"s,
          " 30 27 8:1 / /a rw"s, "30 27 8:1 /  rw"s, "30 27 8:1 / /a\0b rw"s,
          "99999999999999999999 27 8:1 / /a rw"s}) {
        const std::string line = begin + " - ext4 /dev/sda1 rw";
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
}

}  // namespace
}  // namespace norvane
