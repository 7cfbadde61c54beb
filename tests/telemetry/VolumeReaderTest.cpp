#include "telemetry/VolumeReader.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

constexpr std::int64_t kGB = 1'000'000'000;

class VolumeReaderTest : public testing::Test {
 protected:
    std::vector<DiskSnapshot> read(ScriptedFileManager::Volumes volumes) {
        machine_.fileManager.volumes.always(std::move(volumes));
        return reader_.readMountedVolumes({++tick_});
    }
    // The row of this volume alone, without its identity.
    DiskSnapshot rowOf(std::string path, VolumeResourceValues values) {
        auto rows = read({{VolumeURL(std::move(path), std::move(values))}});
        EXPECT_EQ(rows.size(), 1U);
        rows.at(0).id = {};
        return rows[0];
    }

    ScriptedMachine machine_;
    VolumeReader reader_{machine_.fileManager, machine_.uuidSource};
    std::uint64_t tick_ = 0;
};

TEST_F(VolumeReaderTest, FillsARowFromWhatIsKnown) {
    EXPECT_EQ(rowOf("/", {"System", 500 * kGB, 123'500'000'000, true, true, {}}),
              (DiskSnapshot{{}, "System", 376.5, 500, false, true, 123.5}));
    EXPECT_EQ(rowOf("/media/ada/STICK", {{}, 64 * kGB, 14 * kGB, false, false, {}}),
              (DiskSnapshot{{}, "STICK", 50, 64, true, false, 14}));
    EXPECT_EQ(rowOf("/", {{}, kGB, kGB, true, true, {}}), (DiskSnapshot{{}, "/", 0, 1, false, true, 1}));
    EXPECT_EQ(rowOf("/srv/share", {{}, 8 * kGB, kGB, {}, {}, {}}),
              (DiskSnapshot{{}, "share", 7, 8, false, false, 1}))
        << "nobody can say whether it is internal";
    EXPECT_EQ(rowOf("/a", {{}, 8 * kGB, 9 * kGB, {}, {}, {}}), (DiskSnapshot{{}, "a", 0, 8, false, false, 9}))
        << "more available than there is";
    EXPECT_EQ(rowOf("/a", {{}, 8 * kGB, {}, {}, {}, {}}), (DiskSnapshot{{}, "a", 8, 8, false, false, 0}));
    EXPECT_EQ(rowOf("/a", {"a\xFF", 0, {}, {}, {}, {}}),
              (DiskSnapshot{{}, "a\uFFFD", 0, 0, false, false, 0}));
    EXPECT_EQ(rowOf("/m/\xC3", {{}, 0, {}, {}, {}, {}}).name, "\uFFFD");
}

TEST_F(VolumeReaderTest, KeepsTheMachinesOrderAndLeavesOutWhatCannotBeRead) {
    VolumeResourceValues sized;
    sized.volumeTotalCapacity = 1;
    const auto rows =
        read({{{"/z", sized}, {"/b", std::nullopt}, {"/c", VolumeResourceValues{}}, {"/a", sized}}});
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].name, "z");
    EXPECT_EQ(rows[1].name, "a");
    EXPECT_TRUE(read(std::nullopt).empty());

    // Alike in all but the identity, which is new for every row at every read.
    const std::vector<VolumeURL> twins(2, {"/a", sized});
    const auto first = read(twins);
    EXPECT_NE(first[0], first[1]);
    EXPECT_NE(first[0], read(twins)[0]);
}

}  // namespace
}  // namespace norvane
