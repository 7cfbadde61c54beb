#include "insight/ImpactPod.h"

#include <gtest/gtest.h>

#include "insight/HealthySnapshot.h"

namespace norvane {
namespace {

TEST(ImpactPod, TellsTheImpactOnBatteryAndThePlugOtherwise) {
    EXPECT_EQ(impactPodIcon(nullptr), "bolt.circle");
    EXPECT_EQ(impactPodValue(nullptr), "\u2014");
    struct Case {
        ImpactState impact;
        std::string_view valueOnBattery;
    };
    SystemSnapshot now = healthySnapshot();
    for (const Case& c : {Case{ImpactState::low, "Normal"}, Case{ImpactState::moderate, "Moderate"},
                          Case{ImpactState::high, "High"}}) {
        now.energyImpact = c.impact;
        now.isOnBattery = true;
        EXPECT_EQ(impactPodIcon(&now), "bolt.circle");
        EXPECT_EQ(impactPodValue(&now), c.valueOnBattery);
        now.isOnBattery = false;
        EXPECT_EQ(impactPodIcon(&now), "bolt.circle.fill");
        EXPECT_EQ(impactPodValue(&now), "Plugged In");
    }
}

}  // namespace
}  // namespace norvane
