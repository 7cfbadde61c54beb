#include "telemetry/VolumeReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

// All that a volume needs to be shown.
VolumeResourceValues sized() {
    VolumeResourceValues values;
    values.volumeTotalCapacity = 1;
    return values;
}

class VolumeReaderTest : public testing::Test {
 protected:
    std::vector<DiskSnapshot> read(ScriptedFileManager::Volumes volumes) {
        machine_.fileManager.volumes.always(std::move(volumes));
        return reader_.readMountedVolumes({++tick_});
    }

    ScriptedMachine machine_;
    VolumeReader reader_{machine_.fileManager, machine_.uuidSource};
    std::uint64_t tick_ = 0;
};

TEST_F(VolumeReaderTest, FillsARowFromWhatIsKnown) {
    struct Case {
        const char* name;
        std::string path;
        std::optional<std::string> volumeName;
        std::optional<std::int64_t> total, available;
        std::optional<bool> isInternal, isRoot;
        DiskSnapshot want;  // whatever its id
    };
    constexpr std::int64_t G = 1'000'000'000;
    for (const Case& c : {
             Case{"the system's",
                  "/",
                  "System",
                  500 * G,
                  123'500'000'000,
                  true,
                  true,
                  {{}, "System", 376.5, 500, false, true, 123.5}},
             Case{"a stick without a name",
                  "/media/ada/STICK",
                  {},
                  64 * G,
                  14 * G,
                  false,
                  false,
                  {{}, "STICK", 50, 64, true, false, 14}},
             Case{"a root without a name", "/", {}, G, G, true, true, {{}, "/", 0, 1, false, true, 1}},
             Case{"a share, of which nobody can say whether it is internal",
                  "/srv/share",
                  {},
                  8 * G,
                  G,
                  {},
                  {},
                  {{}, "share", 7, 8, false, false, 1}},
             Case{"more available than there is",
                  "/a",
                  {},
                  8 * G,
                  9 * G,
                  {},
                  {},
                  {{}, "a", 0, 8, false, false, 9}},
             Case{"no available capacity", "/a", {}, 8 * G, {}, {}, {}, {{}, "a", 8, 8, false, false, 0}},
             Case{"a total of nothing", "/proc", {}, 0, {}, {}, {}, {{}, "proc", 0, 0, false, false, 0}},
             Case{"a name that is no text",
                  "/a",
                  "a\xFF",
                  0,
                  {},
                  {},
                  {},
                  {{}, "a\uFFFD", 0, 0, false, false, 0}},
             Case{"a path that is no text",
                  "/m/\xC3",
                  {},
                  0,
                  {},
                  {},
                  {},
                  {{}, "\uFFFD", 0, 0, false, false, 0}},
         }) {
        auto rows = read({{VolumeURL(
            c.path, VolumeResourceValues{c.volumeName, c.total, c.available, c.isInternal, c.isRoot, {}})}});
        ASSERT_EQ(rows.size(), 1U) << c.name;
        rows[0].id = {};
        EXPECT_EQ(rows[0], c.want) << c.name << ": " << rows[0].name << ", " << rows[0].usedGB << " of "
                                   << rows[0].totalGB;
    }
}

TEST_F(VolumeReaderTest, KeepsTheMachinesOrderAndLeavesOutWhatCannotBeRead) {
    const auto rows =
        read({{{"/z", sized()}, {"/b", std::nullopt}, {"/c", VolumeResourceValues{}}, {"/a", sized()}}});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].name, "z");
    EXPECT_EQ(rows[1].name, "a");
    EXPECT_TRUE(read(std::nullopt).empty());
}

TEST_F(VolumeReaderTest, EveryReadGivesEveryRowANewIdentity) {
    const std::vector<VolumeURL> urls(2, {"/a", sized()});
    const auto first = read(urls);
    const auto second = read(urls);
    EXPECT_NE(first[0], first[1]) << "alike in all but the identity";
    EXPECT_NE(first[0], second[0]);
}

}  // namespace
}  // namespace norvane
