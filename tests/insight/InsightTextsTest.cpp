#include <fnmatch.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "insight/BatteryInsight.h"
#include "insight/Combination.h"
#include "insight/CPUInsight.h"
#include "insight/MemoryInsight.h"
#include "insight/StorageInsight.h"

namespace norvane {
namespace {

// What is to be said in each state of a machine, as a truth table: no row outranks another, and every state
// belongs to exactly one. A pattern has for each letter of a state the same letter, several in brackets, or a
// point where any will do; blanks only group.
class InsightTable {
 public:
    struct Row {
        std::vector<std::string> patterns;
        std::string text;  // how it begins, the headline and another line
        bool wasReached = false;
    };

    explicit InsightTable(std::vector<Row> rows) : rows_(std::move(rows)) {
        for (Row& row : rows_) {
            for (std::string& pattern : row.patterns) {
                std::erase(pattern, ' ');
                std::replace(pattern.begin(), pattern.end(), '.', '?');
            }
        }
    }
    ~InsightTable() {
        for (const Row& row : rows_)
            EXPECT_TRUE(row.wasReached) << row.text;
    }

    // `insightAt` gives the text at a verbosity.
    template <typename InsightAt>
    void expect(const std::string& state, InsightAt insightAt) {
        const auto describes = [&](const Row& row) {
            return std::any_of(row.patterns.begin(), row.patterns.end(), [&](const std::string& pattern) {
                return fnmatch(pattern.c_str(), state.c_str(), 0) == 0;
            });
        };
        ASSERT_EQ(std::count_if(rows_.begin(), rows_.end(), describes), 1) << state << ": rows of the table";
        Row& row = *std::find_if(rows_.begin(), rows_.end(), describes);
        row.wasReached = true;
        const std::string detailed(insightAt(InsightVerbosity::detailed));
        EXPECT_TRUE(detailed.starts_with(row.text)) << state << ' ' << detailed;
        const std::string headline = row.text.substr(0, row.text.find('\n'));
        EXPECT_EQ(insightAt(InsightVerbosity::concise), headline) << state;
    }

 private:
    std::vector<Row> rows_;
};

TEST(BatteryInsight, SaysTheSentenceOfEveryCombination) {
    // Thermal level, P cores and GPU saturated; on battery, charging, warm; charge (10, 11, 20, 21, 99 and
    // 100 percent), condition (none, normal, another spelling, another), energy impact; memory pressure, swap
    // high, GPU high; low power mode, the processor's kind, its cores in use.
    InsightTable table(
        {{{"[sc]1. ... ... ... ...", "[sc]01 ... ... ... ..."},
          "Thermal limit reached.\nHeavy compute load is"},
         {{"[sc]00 ... ... ... ..."}, "Thermal limit reached.\nInternal temperatures are high."},
         {{"[nf].. 011 ... ... ..."}, "Active charging.\nBattery is slightly warm, which"},
         {{"[nf].. 010 ... ... ..."}, "Active charging.\nEnergy transfer and thermals"},
         {{"[nf].. 00. f.. ... ..."}, "Fully charged.\nThe system is operating"},
         {{"[nf].. 00. [clLmM].. ... ..."}, "Charge on hold.\nmacOS is maintaining current"},
         {{"[nf].. 1.. .[nS]. ... ..."}, "Service recommended.\nBattery capacity has noticeably"},
         {{"[nf].. 1.. c[-N]. ... ..."}, "Battery critically low.\nConnect to power immediately to"},
         {{"[nf].. 1.. [lL][-N]. ... ..."}, "Battery is running low.\nConnect to power soon to avoid"},
         {{"[nf].. 1.. [mMf][-N]h [24]1. ..."}, "High energy impact.\nExcessive memory swap is"},
         {{"[nf].. 1.. [mMf][-N]h 1.1 ...", "[nf].. 1.. [mMf][-N]h [24]01 ..."},
          "High energy impact.\nHeavy GPU utilization is"},
         {{"[nf].. 1.. [mMf][-N]h 1.0 ...", "[nf].. 1.. [mMf][-N]h [24]00 ..."},
          "High energy impact.\nSustained background workloads"},
         {{"[nf].. 1.. [mMf][-N][im] ... 1.."}, "Low Power Mode active.\nmacOS is deliberately"},
         {{"[nf].. 1.. [mMf][-N][im] ... 011"}, "Operating optimally.\nmacOS is efficiently routing"},
         {{"[nf].. 1.. [mMf][-N][im] ... 00.", "[nf].. 1.. [mMf][-N][im] ... 010"},
          "Battery is healthy.\nCompute demand, memory"}});
    SystemSnapshot now{};
    // Every thirteenth of a great many: no number of choices divides it.
    for (unsigned number = 0; !HasFatalFailure(); number += 13) {
        Combination combination(number);
        now.thermalLevel = combination.of("nfsc", {ThermalLevel::nominal, ThermalLevel::fair,
                                                   ThermalLevel::serious, ThermalLevel::critical});
        now.isPCoreSaturated = combination.flag();
        now.isGPUSaturated = combination.flag();
        now.isOnBattery = combination.flag();
        now.isCharging = combination.flag();
        now.isBatteryWarm = combination.flag();
        now.batteryPercentage = combination.of("clLmMf", {10, 11, 20, 21, 99, 100});
        now.batteryHealthCondition = combination.of<std::optional<std::string>>(
            "-NnS", {std::nullopt, "Normal", "normal", "Check Battery"});
        now.energyImpact =
            combination.of("imh", {ImpactState::low, ImpactState::moderate, ImpactState::high});
        now.memoryPressure = combination.of("124", {1, 2, 4});
        now.isMemorySwapHigh = combination.flag();
        now.isGPUHigh = combination.flag();
        const bool isLowPowerModeEnabled = combination.flag();
        now.isAppleSilicon = combination.flag();
        now.isAppleSiliconOptimized = combination.flag();
        if (combination.isBeyondLast()) break;
        table.expect(combination.state(), [&](InsightVerbosity verbosity) {
            return batteryInsightText(&now, isLowPowerModeEnabled, verbosity);
        });
    }
    EXPECT_EQ(batteryInsightText(nullptr, true, InsightVerbosity::detailed), "Battery status unavailable.");
}

TEST(CPUInsight, SaysTheSentenceOfEveryCombination) {
    // Critical, GPU and P cores saturated; idle, moderate load, GPU active; the momentary load, which says
    // nothing.
    InsightTable table({{{"11. ... ."}, "Critical system load.\nBoth CPU and GPU are nearly"},
                        {{"101 ... ."}, "Critical CPU load.\nPerformance cores are pinned"},
                        {{"100 ... ."}, "Critical CPU load.\nThe processor is fully"},
                        {{"0.. 1.. ."}, "System is resting.\nThe processor has vast idle"},
                        {{"0.. 01. ."}, "CPU is under moderate load.\nSustained usage indicates"},
                        {{"0.. 001 ."}, "Normal CPU activity.\nHowever, noticeable graphics"},
                        {{"0.. 000 ."}, "CPU is operating efficiently.\nCompute demand is low and the"}});
    SystemSnapshot now{};
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.cpuState = combination.flag() ? ComponentState::critical : ComponentState::normal;
        now.isGPUSaturated = combination.flag();
        now.isPCoreSaturated = combination.flag();
        now.isSystemIdle = combination.flag();
        now.isCPUModerateLoad = combination.flag();
        now.isGPUActive = combination.flag();
        now.cpuUsagePercent = combination.flag() ? 100 : 0;
        if (combination.isBeyondLast()) break;
        table.expect(combination.state(), [&](auto verbosity) { return cpuInsightText(&now, verbosity); });
    }
    EXPECT_EQ(cpuInsightText(nullptr, InsightVerbosity::detailed), "CPU status unavailable.");
}

TEST(MemoryInsight, SaysTheSentenceOfEveryCombination) {
    // The kernel's level, what raises it (nothing, swap, compression); swap high, thrashing, highly
    // compressed, caching.
    InsightTable table({{{"4. ....", "[01235]. 11.."}, "Critical memory load.\nThe system is severely"},
                        {{"[01235]. 10..", "[235]. 0...", "[01][sc] 0..."},
                         "Elevated memory pressure.\nPhysical RAM is full. macOS is"},
                        {{"[01]n 0.1."}, "Memory is highly utilized.\nmacOS is actively compressing"},
                        {{"1n 0.01"}, "Operating optimally.\nmacOS is efficiently utilizing"},
                        {{"1n 0.00", "0n 0.0."}, "Memory is healthy.\nApplication demand is"}});
    SystemSnapshot now{};
    now.totalMemoryGB = 10;
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.memoryPressure = combination.of("012345", {0, 1, 2, 3, 4, 5});
        const char raising = combination.letter("nsc");
        // 0.4 to the last bit, and the next number.
        now.swapUsedGB = raising == 's' ? std::nextafter(1.0, 2) : 1;
        now.compressedMemoryGB = raising == 'c' ? std::nextafter(4.0, 5) : 4;
        now.isMemorySwapHigh = combination.flag();
        now.isMemoryThrashing = combination.flag();
        now.isMemoryHighlyCompressed = combination.flag();
        now.isMemoryCachingActive = combination.flag();
        if (combination.isBeyondLast()) break;
        const std::int64_t least = raising == 'n' ? 0 : 2;
        EXPECT_EQ(memoryPressureTier(&now), std::max(now.memoryPressure, least)) << combination.state();
        table.expect(combination.state(), [&](auto verbosity) { return memoryInsightText(&now, verbosity); });
    }
    now.memoryPressure = 1;
    now.swapUsedGB = 0;
    for (const auto& [noTotal, compressed] : {std::pair{0, 5}, {-10, -5}}) {
        now.totalMemoryGB = noTotal;
        now.compressedMemoryGB = compressed;
        EXPECT_EQ(memoryPressureTier(&now), 1) << noTotal;
    }
    EXPECT_EQ(memoryPressureTier(nullptr), 1);
    EXPECT_EQ(memoryInsightText(nullptr, InsightVerbosity::detailed), "Memory status unavailable.");
}

TEST(StorageInsight, SaysTheSentenceOfEveryCombinationByThePanelsRatesAndVolumes) {
    // Critical, low, heavy activity, filling; reading against writing.
    InsightTable table({{{"1... ."}, "Critical storage limit.\nVery little free space remains"},
                        {{"01.. ."}, "Low storage capacity.\nWith limited free space"},
                        {{"001. <"}, "Heavy write activity.\nThe drive is sustaining heavy"},
                        {{"001. [=>]"}, "Heavy read activity.\nThe drive is sustaining heavy"},
                        {{"0001 ."}, "Storage is filling up.\nStorage capacity is well"},
                        {{"0000 ."}, "Storage is healthy.\nCapacity is comfortable, and"}});
    DiskSnapshot boot, external;
    boot.isBootVolume = true;
    SystemSnapshot now{};
    constexpr std::string_view kUnavailable = "Internal storage information is unavailable.";
    for (unsigned number = 0;; ++number) {
        Combination combination(number);
        now.isStorageCritical = combination.flag();
        now.isStorageLow = combination.flag();
        now.isStorageHeavyIO = combination.flag();
        now.isStorageFilling = combination.flag();
        const double readMBps = combination.of("<=>", {49.5, 50.0, 50.5});
        if (combination.isBeyondLast()) break;
        now.diskReadMBps = 100 - readMBps;
        now.diskWriteMBps = readMBps;
        now.volumes = {};
        table.expect(combination.state(), [&](auto verbosity) {
            return storageInsightText(&now, {external, boot}, readMBps, 50, verbosity);
        });
        now.volumes = {boot};
        EXPECT_EQ(storageInsightText(&now, {external}, 0, 0, InsightVerbosity::concise), kUnavailable);
    }
    EXPECT_EQ(storageInsightText(nullptr, {boot}, 0, 0, InsightVerbosity::detailed), kUnavailable);
}

}  // namespace
}  // namespace norvane
