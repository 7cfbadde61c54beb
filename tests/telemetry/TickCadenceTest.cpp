#include "telemetry/TickCadence.h"

#include <gtest/gtest.h>

namespace norvane {
namespace {

TEST(TickCadence, SpacesTheSlowReadingsOut) {
    struct Case {
        const char* name;
        std::uint64_t tickCount;
        bool isVisible, isForced;
        TickCadence want;
    };
    constexpr TickCadence kNone{};
    constexpr TickCadence kBatteryAlone{.readsBattery = true};
    constexpr TickCadence kFull{.isFull = true};
    constexpr TickCadence kThird{.isFull = true, .readsBattery = true, .readsGPUAndDisk = true};
    constexpr TickCadence kAll{
        .isFull = true, .readsBattery = true, .readsGPUAndDisk = true, .readsVolumes = true};
    for (const Case& c :
         {Case{"the first, hidden", 1, false, false, kBatteryAlone},
          Case{"the first, shown", 1, true, false, kAll}, Case{"the first, forced", 1, false, true, kAll},
          Case{"hidden, 3", 3, false, false, kNone}, Case{"hidden, 30", 30, false, false, kNone},
          Case{"hidden, 60", 60, false, false, kBatteryAlone}, Case{"hidden, 61", 61, false, false, kNone},
          Case{"shown, 2", 2, true, false, kFull}, Case{"shown, 3", 3, true, false, kThird},
          Case{"shown, 30", 30, true, false, kAll}, Case{"shown, 60", 60, true, false, kAll},
          Case{"an opening at 7", 7, true, true, kAll},
          Case{"an opening that closed again before its tick, 60", 60, false, true, kAll}}) {
        EXPECT_EQ(cadenceOf(c.tickCount, c.isVisible, c.isForced), c.want) << c.name;
    }
}

}  // namespace
}  // namespace norvane
