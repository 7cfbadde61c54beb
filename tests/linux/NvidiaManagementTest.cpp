#include "platform/linux/NvidiaManagement.h"

#include <gtest/gtest.h>

#include "FakeSystemCalls.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Percents = NvidiaManagement::Percents;

constexpr const char* kFirst = "0000:01:00.0";
constexpr const char* kSecond = "0000:02:00.0";

// A driver with two devices, which counts what it is asked.
class NvidiaManagementTest : public testing::Test {
 protected:
    struct Device {
        unsigned percent;
        int result = 0;
    };

    FakeSystemCalls system;
    std::map<std::string, Device> devices{{kFirst, {40}}, {kSecond, {70}}};
    bool isInstalled = true;
    int initResult = 0;
    bool isOpen = false;
    int loads = 0;
    int inits = 0;
    NvidiaManagement management{[this] { return load(); }, system.calls.now};

    std::optional<NvidiaFunctions> load() {
        ++loads;
        if (!isInstalled) return std::nullopt;
        NvidiaFunctions functions;
        functions.nvmlInit_v2 = [this] {
            EXPECT_FALSE(isOpen) << "opened twice";
            ++inits;
            isOpen = initResult == 0;
            return initResult;
        };
        functions.nvmlShutdown = [this] {
            EXPECT_TRUE(std::exchange(isOpen, false)) << "closed, and not open";
            return 0;
        };
        functions.nvmlDeviceGetHandleByPciBusId_v2 = [this](const char* slot,
                                                            NvidiaFunctions::Device* device) {
            EXPECT_TRUE(isOpen) << "asked while closed";
            const auto known = devices.find(slot);
            if (known == devices.end()) return 6;  // not found
            *device = &known->second;
            return 0;
        };
        functions.nvmlDeviceGetUtilizationRates = [](NvidiaFunctions::Device device,
                                                     NvidiaFunctions::Utilization* utilization) {
            const auto* const asked = static_cast<const Device*>(device);
            *utilization = {asked->percent, 99};
            return asked->result;
        };
        return functions;
    }
    // That of the first device, as it is read while it is so busy.
    unsigned readAt(unsigned percent) {
        devices[kFirst].percent = percent;
        const Percents percents = management.read({kFirst});
        EXPECT_FALSE(isOpen);
        return percents.contains(kFirst) ? percents.at(kFirst) : 999;
    }
};

TEST_F(NvidiaManagementTest, OpensTheLibraryForEachReadingAndLooksForAMissingOneSeldom) {
    isInstalled = false;
    EXPECT_TRUE(management.read({}).empty());
    EXPECT_EQ(loads, 0) << "not touched without a device";
    EXPECT_EQ(readAt(40), 999u);
    system.advance(599s);
    EXPECT_EQ(readAt(40), 999u);
    EXPECT_EQ(loads, 1);
    isInstalled = true;
    system.advance(1s);
    EXPECT_EQ(management.read({kFirst, kSecond}), (Percents{{kFirst, 40}, {kSecond, 70}}));
    EXPECT_EQ(management.read({kSecond}), (Percents{{kSecond, 70}}));
    EXPECT_EQ(loads, 2);
    EXPECT_EQ(inits, 2);
    EXPECT_TRUE(NvidiaManagement({}, system.calls.now).read({kFirst}).empty());
}

TEST_F(NvidiaManagementTest, ClosesWhatItOpenedThoughAQuestionFailedAndNothingElse) {
    for (const auto& [slot, device] : {std::pair("0000:09:00.0", Device{40}),
                                       std::pair(kFirst, Device{40, 3}), std::pair(kFirst, Device{101})}) {
        devices[kFirst] = device;
        EXPECT_EQ(management.read({slot, kSecond}), (Percents{{kSecond, 70}})) << slot << device.percent;
        EXPECT_FALSE(isOpen);
    }
    initResult = 9;
    EXPECT_TRUE(management.read({kSecond}).empty());
}

TEST_F(NvidiaManagementTest, LeavesADeviceAloneThatWasIdleFiveTimesInARowSoThatItCanSleep) {
    for (const unsigned percent : {0U, 0U, 0U, 0U, 1U, 0U, 0U, 0U, 0U, 0U}) {
        EXPECT_EQ(readAt(percent), percent);
        system.advance(3s);
    }
    EXPECT_EQ(inits, 10);
    system.advance(26s);  // 29 since the last
    EXPECT_EQ(readAt(40), 0u) << "its 0 stands";
    EXPECT_EQ(inits, 10);
    EXPECT_EQ(management.read({kFirst, kSecond}), (Percents{{kFirst, 0}, {kSecond, 70}})) << "it alone";
    inits = 0;
    for (const auto time : {1s, 30s, 30s}) {
        system.advance(time);
        EXPECT_EQ(readAt(0), 0u);
        EXPECT_EQ(readAt(40), 0u);
    }
    EXPECT_EQ(inits, 3) << "once a pause";
    management.read({});  // it slept
    EXPECT_EQ(readAt(40), 40u) << "woken by somebody with work for it";
}

}  // namespace
}  // namespace norvane
