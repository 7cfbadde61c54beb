#include "dashboard/PodValue.h"

#include <gtest/gtest.h>

#include "insight/HealthySnapshot.h"

namespace norvane {
namespace {

TEST(PodValue, FormatsWithFixedPlacesAndTellsLargeMachinesInTerabytes) {
    SystemSnapshot snapshot = healthySnapshot();

    EXPECT_EQ(cpuPodValue(nullptr), (PodValue{"0.00", "%"}));
    EXPECT_EQ(memoryPodValue(nullptr), (PodValue{"0.00", "GB used"}));
    snapshot.cpuUsagePercent = 7.125;
    EXPECT_EQ(cpuPodValue(&snapshot), (PodValue{"7.12", "%"})) << "a tie goes to the even digit";
    struct Case {
        double used, total;
        PodValue want;
    };
    for (const Case& c : {Case{11.23, 16, {"11.23", "GB used"}}, Case{512, 1023.9, {"512.00", "GB used"}},
                          Case{512, 1024, {"0.50", "TB used"}}}) {
        snapshot.usedMemoryGB = c.used;
        snapshot.totalMemoryGB = c.total;
        EXPECT_EQ(memoryPodValue(&snapshot), c.want);
    }
    EXPECT_EQ(storagePodValue(nullptr), (PodValue{"0.0", "GB used"}));
    for (const Case& c : {Case{250.04, 500, {"250.0", "GB used"}}, Case{0, 0, {"0.0", "GB used"}},
                          Case{512, 1023.9, {"512.0", "GB used"}}, Case{512, 1024, {"0.5", "TB used"}}}) {
        snapshot.usedDiskGB = c.used;
        snapshot.totalDiskGB = c.total;
        EXPECT_EQ(storagePodValue(&snapshot), c.want);
    }
}

}  // namespace
}  // namespace norvane
