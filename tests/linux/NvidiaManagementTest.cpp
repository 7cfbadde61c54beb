#include "platform/linux/NvidiaManagement.h"

#include <gtest/gtest.h>

#include "FakeSystemCalls.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Percents = NvidiaManagement::Percents;

// A driver with two devices, which writes down what it is asked.
class NvidiaManagementTest : public testing::Test {
 protected:
    static constexpr const char* kFirst = "0000:01:00.0";
    static constexpr const char* kSecond = "0000:02:00.0";

    struct Device {
        std::string slot;
        unsigned percent;
        int result = 0;
    };

    FakeSystemCalls system;
    Device first{kFirst, 40};
    Device second{kSecond, 70};
    bool isInstalled = true;
    int initResult = 0;
    bool isOpen = false;
    int loads = 0;
    int inits = 0;
    int shutdowns = 0;
    NvidiaManagement management{[this] { return load(); }, system.calls.now};

    std::optional<NvidiaFunctions> load() {
        ++loads;
        if (!isInstalled) return std::nullopt;
        NvidiaFunctions functions;
        functions.nvmlInit_v2 = [this] {
            ++inits;
            isOpen = initResult == 0;
            return initResult;
        };
        functions.nvmlShutdown = [this] {
            ++shutdowns;
            isOpen = false;
            return 0;
        };
        functions.nvmlDeviceGetHandleByPciBusId_v2 = [this](const char* slot,
                                                            NvidiaFunctions::Device* device) {
            EXPECT_TRUE(isOpen) << "asked while closed";
            for (Device* known : {&first, &second}) {
                if (known->slot == slot) {
                    *device = known;
                    return 0;
                }
            }
            return 6;  // not found
        };
        functions.nvmlDeviceGetUtilizationRates = [](NvidiaFunctions::Device device,
                                                     NvidiaFunctions::Utilization* utilization) {
            const auto* const asked = static_cast<const Device*>(device);
            utilization->gpu = asked->percent;
            utilization->memory = 99;
            return asked->result;
        };
        return functions;
    }
};

TEST_F(NvidiaManagementTest, OpensTheLibraryForEachReadingAndLoadsItOnce) {
    EXPECT_TRUE(management.read({}).empty());
    EXPECT_EQ(loads, 0) << "not touched without a device";
    EXPECT_EQ(management.read({kFirst, kSecond}), (Percents{{kFirst, 40}, {kSecond, 70}}));
    EXPECT_EQ(management.read({kSecond}), (Percents{{kSecond, 70}}));
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(inits, 2);
    EXPECT_EQ(shutdowns, 2);
}

TEST_F(NvidiaManagementTest, AMissingLibraryIsLookedForAgainSeldom) {
    isInstalled = false;
    EXPECT_TRUE(management.read({kFirst}).empty());
    system.advance(599s);
    EXPECT_TRUE(management.read({kFirst}).empty());
    EXPECT_EQ(loads, 1);
    isInstalled = true;
    system.advance(1s);
    EXPECT_EQ(management.read({kFirst}), (Percents{{kFirst, 40}}));

    NvidiaManagement unheardOf({}, system.calls.now);
    EXPECT_TRUE(unheardOf.read({kFirst}).empty());
}

TEST_F(NvidiaManagementTest, ClosesWhatItOpenedThoughAQuestionFailedAndNothingElse) {
    const auto expectSecondAlone = [this](const char* slot, const Device& device) {
        first = device;
        EXPECT_EQ(management.read({slot, kSecond}), (Percents{{kSecond, 70}})) << slot << device.percent;
        EXPECT_EQ(shutdowns, inits);
    };
    expectSecondAlone("0000:09:00.0", {kFirst, 40});
    expectSecondAlone(kFirst, {kFirst, 40, 3});
    expectSecondAlone(kFirst, {kFirst, 101});
    EXPECT_EQ(shutdowns, 3);
    initResult = 9;
    EXPECT_TRUE(management.read({kSecond}).empty());
    EXPECT_EQ(shutdowns, 3);
    initResult = 0;
    EXPECT_EQ(management.read({kSecond}), (Percents{{kSecond, 70}}));
}

TEST_F(NvidiaManagementTest, LeavesAnIdleDeviceAloneSoThatItCanSleep) {
    first.percent = 0;
    const Percents want{{kFirst, 0}};
    for (int reading = 0; reading < 5; ++reading) {
        EXPECT_EQ(management.read({kFirst}), want);
        system.advance(3s);
    }
    EXPECT_EQ(inits, 5);
    first.percent = 40;
    system.advance(26s);  // 29 since the fifth
    EXPECT_EQ(management.read({kFirst}), want) << "its 0 stands";
    EXPECT_EQ(inits, 5);
    EXPECT_EQ(management.read({kFirst, kSecond}), (Percents{{kFirst, 0}, {kSecond, 70}})) << "it alone";
    first.percent = 0;
    inits = 0;
    for (int pause = 0; pause < 3; ++pause) {
        system.advance(pause == 0 ? 1s : 30s);
        EXPECT_EQ(management.read({kFirst}), want);
        EXPECT_EQ(management.read({kFirst}), want);
    }
    EXPECT_EQ(inits, 3) << "once a pause";
    first.percent = 40;
    system.advance(30s);
    EXPECT_EQ(management.read({kFirst}), (Percents{{kFirst, 40}}));
}

TEST_F(NvidiaManagementTest, OnlyZeroesInARowMakeAPause) {
    for (const unsigned percent : {0U, 0U, 0U, 0U, 1U, 0U, 0U, 0U, 0U}) {
        first.percent = percent;
        management.read({kFirst});
    }
    first.percent = 40;
    EXPECT_EQ(management.read({kFirst}), (Percents{{kFirst, 40}}));

    first.percent = 0;
    for (int reading = 0; reading < 5; ++reading)
        management.read({kFirst});
    management.read({});  // it slept
    first.percent = 40;
    EXPECT_EQ(management.read({kFirst}), (Percents{{kFirst, 40}})) << "woken by somebody with work for it";
}

}  // namespace
}  // namespace norvane
