#include "telemetry/DiskReader.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/scripted/ScriptedMachine.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t kMB = 1'048'576;

RegistryEntry driver(PropertyDictionary statistics) {
    return RegistryEntry({{"Statistics", std::move(statistics)}});
}
RegistryEntry driver(std::int64_t read, std::int64_t written) {
    return driver({{"Bytes (Read)", read}, {"Bytes (Write)", written}});
}

class DiskReaderTest : public testing::Test {
 protected:
    DiskVelocity velocityOf(ScriptedRegistry::Services drivers) {
        machine_.registry.services(RegistryService::IOBlockStorageDriver).always(std::move(drivers));
        return reader_.readDiskVelocity({++tick_});
    }
    DiskVelocity velocityAfter(std::chrono::nanoseconds later, ScriptedRegistry::Services drivers) {
        machine_.time.stepWallClock(later);
        return velocityOf(std::move(drivers));
    }

    ScriptedMachine machine_;
    DiskReader reader_{machine_.registry, machine_.time.wallClock()};
    std::uint64_t tick_ = 0;
};

TEST_F(DiskReaderTest, RatesAreOverTheTimeSinceTheLastSampleIfThatIsUnderFiveSeconds) {
    struct Case {
        const char* name;
        std::chrono::milliseconds later;
        std::int64_t read, written;
        DiskVelocity want;
    };
    constexpr std::int64_t kBefore = 10 * kMB;
    for (const Case& c : {Case{"three seconds", 3s, kBefore + 3'145'728, kBefore, {1, 0}},
                          {"both directions", 2s, kBefore + kMB, kBefore + 6 * kMB, {0.5, 3}},
                          {"just under five", 4'750ms, kBefore, kBefore + 19 * kMB, {0, 4}},
                          {"five", 5s, 90 * kMB, 90 * kMB, {0, 0}},
                          {"a day", 24h, 90 * kMB, 90 * kMB, {0, 0}},
                          {"no time at all", 0s, 90 * kMB, 90 * kMB, {0, 0}},
                          {"the clock stepped back", -1s, 90 * kMB, 90 * kMB, {0, 0}},
                          {"one counter shrank", 1s, kBefore - 1, kBefore + kMB, {0, 1}}}) {
        DiskReader reader(machine_.registry, machine_.time.wallClock());
        auto& drivers = machine_.registry.services(RegistryService::IOBlockStorageDriver);
        drivers.always({{driver(kBefore, kBefore)}});
        EXPECT_EQ(reader.readDiskVelocity({1}), DiskVelocity{}) << c.name << ": the first";
        machine_.time.stepWallClock(c.later);
        drivers.always({{driver(c.read, c.written)}});
        EXPECT_EQ(reader.readDiskVelocity({2}), c.want) << c.name;
        machine_.time.stepWallClock(1s);
        drivers.always({{driver(c.read + kMB, c.written + kMB)}});
        EXPECT_EQ(reader.readDiskVelocity({3}), (DiskVelocity{1, 1})) << c.name << ": the baseline moved";
    }
}

TEST_F(DiskReaderTest, AddsUpWhatEachDriverTells) {
    const auto drivers = [](std::int64_t n) {
        return std::vector{
            driver(n, n),
            RegistryEntry::unreadable(),
            RegistryEntry({{"Statistics", "none"}}),
            RegistryEntry(PropertyDictionary()),
            driver({{"Bytes (Read)", 2 * n}}),
            driver({{"Bytes (Write)", 4 * n}, {"Bytes (Read)", "many"}}),
            driver({{"Bytes (Read)", -n}, {"Bytes (Write)", true}}),
        };
    };
    velocityOf(drivers(kMB));
    EXPECT_EQ(velocityAfter(1s, drivers(2 * kMB)), (DiskVelocity{3, 5}));
}

TEST_F(DiskReaderTest, NoDriverAtAllIsABaselineAndAFailedMatchIsNone) {
    velocityOf({{driver(kMB, kMB)}});
    EXPECT_EQ(velocityAfter(1s, std::nullopt), DiskVelocity{});
    EXPECT_EQ(velocityAfter(1s, {{driver(3 * kMB, kMB)}}), (DiskVelocity{1, 0})) << "over both seconds";
    EXPECT_EQ(velocityAfter(1s, std::vector<RegistryEntry>{}), DiskVelocity{});
    EXPECT_EQ(velocityAfter(1s, {{driver(3 * kMB, kMB)}}), (DiskVelocity{3, 1})) << "over the last";
}

}  // namespace
}  // namespace norvane
