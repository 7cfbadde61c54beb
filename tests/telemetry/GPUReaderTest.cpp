#include "telemetry/GPUReader.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "platform/scripted/ScriptedRegistry.h"

namespace norvane {
namespace {

RegistryEntry device(PropertyValue statistics) {
    return RegistryEntry({{"PerformanceStatistics", std::move(statistics)}});
}
RegistryEntry busy(PropertyValue percent) {
    return device(PropertyDictionary{{"Device Utilization %", std::move(percent)}});
}
RegistryEntry both(PropertyValue utilization, PropertyValue activity) {
    return device(PropertyDictionary{{"GPU Activity(%)", std::move(activity)},
                                     {"Device Utilization %", std::move(utilization)}});
}

TEST(GPUReader, IsTheMeanOverTheDevicesThatReportAWholeNumber) {
    struct Case {
        const char* name;
        ScriptedRegistry::Services devices;
        double want;
    };
    const std::vector silent{RegistryEntry::unreadable(),
                             RegistryEntry(PropertyDictionary()),
                             device("statistics"),
                             device(PropertyDictionary()),
                             busy("busy"),
                             busy(true),
                             busy(80.5),
                             busy(std::numeric_limits<double>::quiet_NaN())};
    auto silentAndOne = silent;
    silentAndOne.insert(silentAndOne.begin() + 4, busy(80));
    for (const Case& c :
         {Case{"the match failed", std::nullopt, 0}, Case{"none", std::vector<RegistryEntry>{}, 0},
          Case{"two", {{busy(40), busy(0)}}, 20}, Case{"one among those that tell nothing", silentAndOne, 80},
          Case{"all tell nothing", silent, 0}, Case{"the utilization goes first", {{both(30, 90)}}, 30},
          Case{"the activity stands in", {{both("busy", 90)}}, 90},
          Case{"for each device by itself", {{both(30, 90), both("busy", 90)}}, 60},
          Case{"a whole number in floating point", {{busy(40.0)}}, 40},
          Case{"not clamped", {{busy(-10), busy(250)}}, 120}}) {
        ScriptedRegistry registry;
        registry.services(RegistryService::IOAccelerator).always(c.devices);
        EXPECT_EQ(GPUReader(registry).readGPUUtilization({1}), c.want) << c.name;
    }
}

}  // namespace
}  // namespace norvane
