#include "insight/StorageInsight.h"

#include <gtest/gtest.h>

#include "insight/Combination.h"
#include "insight/HealthySnapshot.h"
#include "insight/InsightTable.h"
#include "insight/PrimaryVolumes.h"

namespace norvane {
namespace {

DiskSnapshot volume(const char* name, bool isBootVolume) {
    DiskSnapshot volume;
    volume.name = name;
    volume.isBootVolume = isBootVolume;
    return volume;
}

const DiskSnapshot kBoot = volume("Boot", true);
const DiskSnapshot kOtherBoot = volume("Other boot", true);
const DiskSnapshot kInternal = volume("Internal", false);
const DiskSnapshot kExternal = volume("External", false);

TEST(StorageInsight, SaysTheSentenceOfEveryCombination) {
    // Critical, low, heavy activity, filling; reading against writing.
    InsightTable table({
        {{"1... ."}, "Critical storage limit.", "Very little free space remains"},
        {{"01.. ."}, "Low storage capacity.", "With limited free space"},
        {{"001. <"}, "Heavy write activity.", "The drive is sustaining heavy"},
        {{"001. [=>]"}, "Heavy read activity.", "The drive is sustaining heavy"},
        {{"0001 ."}, "Storage is filling up.", "Storage capacity is well"},
        {{"0000 ."}, "Storage is healthy.", "Capacity is comfortable, and"},
    });
    SystemSnapshot now = healthySnapshot();
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.isStorageCritical = combination.flag();
        now.isStorageLow = combination.flag();
        now.isStorageHeavyIO = combination.flag();
        now.isStorageFilling = combination.flag();
        const char reading = combination.letter("<=>");
        if (combination.isBeyondLast()) break;
        const double readMBps = reading == '<' ? 49.5 : reading == '=' ? 50 : 50.5;
        // The panel's rates decide, not the snapshot's.
        now.diskReadMBps = 100 - readMBps;
        now.diskWriteMBps = readMBps;
        table.expect(combination.state(), [&](InsightVerbosity verbosity) {
            return storageInsightText(&now, {kExternal, kBoot}, readMBps, 50, verbosity);
        });
    }
    table.expectAllReached();
}

TEST(StorageInsight, IsUnavailableWithoutASnapshotOrABootVolumeHoweverMuchIsWanted) {
    SystemSnapshot now = healthySnapshot();
    now.isStorageCritical = true;
    now.volumes = {kBoot};  // the panel's volumes decide, not the snapshot's
    constexpr std::string_view kUnavailable = "Internal storage information is unavailable.";
    for (const auto verbosity : {InsightVerbosity::detailed, InsightVerbosity::concise}) {
        EXPECT_EQ(storageInsightText(nullptr, {kBoot}, 0, 0, verbosity), kUnavailable);
        EXPECT_EQ(storageInsightText(nullptr, {}, 0, 0, verbosity), kUnavailable);
        EXPECT_EQ(storageInsightText(&now, {}, 0, 0, verbosity), kUnavailable);
        EXPECT_EQ(storageInsightText(&now, {kExternal}, 0, 0, verbosity), kUnavailable);
        EXPECT_EQ(storageInsightText(&now, {kInternal, kExternal}, 0, 0, verbosity), kUnavailable);
    }
}

TEST(PrimaryVolumes, AreTheFirstBootVolumeAloneOrAllWhereThereIsNone) {
    using Volumes = std::vector<DiskSnapshot>;
    struct Case {
        Volumes volumes, primary;
    };
    for (const Case& c :
         {Case{{}, {}}, Case{{kExternal}, {kExternal}}, Case{{kExternal, kInternal}, {kExternal, kInternal}},
          Case{{kBoot}, {kBoot}}, Case{{kExternal, kBoot, kInternal, kOtherBoot}, {kBoot}},
          Case{{kOtherBoot, kBoot}, {kOtherBoot}}}) {
        const auto primary = primaryVolumes(c.volumes);
        EXPECT_EQ(Volumes(primary.begin(), primary.end()), c.primary);
    }
}

}  // namespace
}  // namespace norvane
