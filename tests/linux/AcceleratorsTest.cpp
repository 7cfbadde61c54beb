#include "platform/linux/Accelerators.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Numbers = std::vector<std::optional<std::int64_t>>;

class AcceleratorsTest : public testing::Test {
 protected:
    static constexpr const char* kIntegrated = "0000:00:02.0";
    static constexpr const char* kDiscrete = "0000:01:00.0";

    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    int nvidiaLoads = 0;
    unsigned nvidiaPercent = 0;
    std::string nvidiaSlot;
    Accelerators accelerators{machine.root(observer), calls()};

    SystemCalls calls() {
        SystemCalls calls = system.calls;
        calls.userId = ::getuid();
        calls.loadNvidiaFunctions = [this]() -> std::optional<NvidiaFunctions> {
            ++nvidiaLoads;
            return NvidiaFunctions{
                [] { return 0; }, [] { return 0; },
                [this](const char* slot, NvidiaFunctions::Device* device) {
                    nvidiaSlot = slot;
                    *device = this;
                    return 0;
                },
                [this](NvidiaFunctions::Device, NvidiaFunctions::Utilization* utilization) {
                    utilization->gpu = nvidiaPercent;
                    return 0;
                }};
        };
        return calls;
    }

    static std::string folderOf(const std::string& device) { return "/sys/devices/bus/" + device + "/"; }

    // As the kernel lays it out: the class folder holds links into the device's folder.
    void addCard(int number, const std::string& device, const std::string& driver,
                 const std::string& runtimeStatus = "active") {
        for (const std::string& node :
             {"card" + std::to_string(number), "renderD" + std::to_string(128 + number)}) {
            const std::string folder = folderOf(device) + "drm/" + node;
            machine.link("/sys/class/drm/" + node, "../../.." + folder);
            machine.link(folder + "/device", "../../../" + device);
            machine.write(folder + "/dev", "226:0\n");
        }
        machine.remove(folderOf(device) + "driver");
        machine.link(folderOf(device) + "driver", "../../../bus/pci/drivers/" + driver);
        machine.write(folderOf(device) + "power/runtime_status", runtimeStatus + "\n");
    }
    void setBusy(const std::string& device, std::string_view text) {
        machine.write(folderOf(device) + "gpu_busy_percent", text);
    }
    // A process with one client, whose engine has been busy for so long.
    void setClient(int process, const std::string& node, const std::string& lines) {
        const std::string folder = "/proc/" + std::to_string(process);
        machine.remove(folder);
        machine.link(folder + "/fd/4", "/dev/dri/" + node);
        machine.write(folder + "/fdinfo/4", "drm-client-id: " + std::to_string(process) + "\n" + lines);
    }
    static Numbers numbersIn(const Accelerators::Answer& answer) {
        Numbers numbers;
        for (const RegistryEntry& service : answer.services) {
            const PropertyValue* const statistics =
                service.IORegistryEntryCreateCFProperty("PerformanceStatistics");
            const PropertyValue* const number = statistics != nullptr && statistics->dictionary() != nullptr
                                                    ? statistics->dictionary()->find("Device Utilization %")
                                                    : nullptr;
            numbers.push_back(number != nullptr ? number->wholeNumber() : std::nullopt);
        }
        return numbers;
    }
    Numbers numbers() { return numbersIn(accelerators.read()); }
    // What it is two seconds later.
    Numbers numbersLater() {
        system.advance(2s);
        return numbers();
    }
};

TEST_F(AcceleratorsTest, ASleepingDeviceIsLeftAloneBesideABusyOne) {
    addCard(0, kIntegrated, "i915");
    addCard(1, kDiscrete, "amdgpu", "suspended");
    setBusy(kDiscrete, "90\n");
    setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
    setClient(200, "renderD129", "drm-engine-gfx: 0 ns\n");
    EXPECT_EQ(numbers(), (Numbers{{}, {}}));
    setClient(100, "renderD128", "drm-engine-render: 500000000 ns\n");
    EXPECT_EQ(numbersLater(), (Numbers{25, {}}));
    for (const std::vector<std::string>* paths : {&observer->opened, &observer->read}) {
        for (const std::string& path : *paths) {
            EXPECT_FALSE(path.starts_with("/proc/200/fdinfo")) << path;
            EXPECT_TRUE(path.find("card1") == std::string::npos ||
                        path == "/sys/class/drm/card1/device/power/runtime_status")
                << path;
        }
    }

    machine.write(folderOf(kDiscrete) + "power/runtime_status", "active\n");
    EXPECT_EQ(numbersLater(), (Numbers{0, 90}));
}

TEST_F(AcceleratorsTest, ThePowerStateDecidesWhetherADeviceIsAsked) {
    addCard(0, kDiscrete, "amdgpu");
    setBusy(kDiscrete, "50\n");
    struct Case {
        const char* status;
        std::optional<std::int64_t> want;
    };
    for (const Case& c :
         {Case{"active\n", 50}, Case{"unsupported\n", 50}, Case{"suspended\n", {}}, Case{"suspending\n", {}},
          Case{"resuming\n", {}}, Case{"error\n", {}}, Case{"", {}}}) {
        machine.write(folderOf(kDiscrete) + "power/runtime_status", c.status);
        EXPECT_EQ(numbers(), Numbers{c.want}) << c.status;
    }
    machine.remove(folderOf(kDiscrete) + "power/runtime_status");
    machine.makeFolder(folderOf(kDiscrete) + "power/runtime_status");
    EXPECT_EQ(numbers(), Numbers{{}}) << "it does not say";
    machine.remove(folderOf(kDiscrete) + "power");
    EXPECT_EQ(numbers(), Numbers{50}) << "it never sleeps";
}

TEST_F(AcceleratorsTest, WhatADriverSaysIsShownAsItIs) {
    addCard(0, kDiscrete, "amdgpu");
    struct Case {
        const char* text;
        std::optional<std::int64_t> want;
    };
    for (const Case& c :
         {Case{"0\n", 0}, Case{"37\n", 37}, Case{"100\n", 100}, Case{"101\n", {}}, Case{"-1\n", {}},
          Case{"", {}}, Case{"busy\n", {}}, Case{"5 6\n", {}}, Case{"18446744073709551616\n", {}}}) {
        setBusy(kDiscrete, c.text);
        EXPECT_EQ(numbers(), Numbers{c.want}) << c.text;
    }
    machine.remove(folderOf(kDiscrete) + "gpu_busy_percent");
    EXPECT_EQ(numbers(), Numbers{{}});
    machine.makeFolder(folderOf(kDiscrete) + "gpu_busy_percent");
    EXPECT_EQ(numbers(), Numbers{{}}) << "there, but cannot be read now";
}

TEST_F(AcceleratorsTest, ConnectorsAreNoCardsAndADeviceCountsOnce) {
    addCard(0, kDiscrete, "amdgpu");
    addCard(1, kDiscrete, "amdgpu");
    setBusy(kDiscrete, "50\n");
    machine.link("/sys/class/drm/card0-DP-1", "../../devices/bus/0000:01:00.0/drm/card0/card0-DP-1");
    machine.link(folderOf(kDiscrete) + "drm/card0/card0-DP-1/device", "../../card0");
    machine.write("/sys/class/drm/version", "drm 1.1.0 20060810\n");
    EXPECT_EQ(numbers(), Numbers{50});
}

TEST_F(AcceleratorsTest, DriversThatTellOfTheirClients) {
    for (const char* driver : {"i915", "panfrost", "panthor", "msm_dpu", "v3d", "etnaviv", "lima", "asahi"}) {
        machine.remove("/sys");
        addCard(0, "fd4a0000.gpu", driver);
        setClient(100, "renderD128", "drm-engine-x: 0 ns\ndrm-engine-y: 0 ns\ndrm-engine-capacity-y: 2\n");
        setClient(200, "card0", "drm-engine-x: 0 ns\n");
        Accelerators fresh(machine.root(), calls());
        EXPECT_EQ(numbersIn(fresh.read()), Numbers{{}}) << driver;
        setClient(100, "renderD128",
                  "drm-engine-x: 500000000 ns\ndrm-engine-y: 2000000000 ns\ndrm-engine-capacity-y: 2\n");
        setClient(200, "card0", "drm-engine-x: 611000000 ns\n");
        system.advance(2s);
        EXPECT_EQ(numbersIn(fresh.read()), Numbers{56}) << driver << ": 55.55, rounded";
    }
}

TEST_F(AcceleratorsTest, XeTellsCyclesOfItsClients) {
    addCard(0, kIntegrated, "xe");
    setClient(100, "renderD128", "drm-cycles-rcs: 100\ndrm-total-cycles-rcs: 1000\n");
    EXPECT_EQ(numbers(), Numbers{{}});
    setClient(100, "renderD128", "drm-cycles-rcs: 400\ndrm-total-cycles-rcs: 2000\n");
    EXPECT_EQ(numbersLater(), Numbers{30});
}

TEST_F(AcceleratorsTest, WithoutClientsTheTimeThatWasNotSleptCounts) {
    addCard(0, kIntegrated, "i915");
    const std::string counter = folderOf(kIntegrated) + "drm/card0/gt/gt0/rc6_residency_ms";
    EXPECT_EQ(numbers(), Numbers{{}}) << "no counter either";
    machine.write(counter, "1000\n");
    EXPECT_EQ(numbersLater(), Numbers{{}});
    machine.write(counter, "2500\n");
    EXPECT_EQ(numbersLater(), Numbers{25});
    machine.write(counter, "9000\n");
    EXPECT_EQ(numbersLater(), Numbers{0}) << "slept longer than there was";
    machine.write(counter, "10\n");
    EXPECT_EQ(numbersLater(), Numbers{{}}) << "the counter began anew";
    EXPECT_EQ(numbersLater(), Numbers{100});
    machine.write(counter, "0\n");
    EXPECT_EQ(numbersLater(), Numbers{{}});
    EXPECT_EQ(numbersLater(), Numbers{{}}) << "it is not allowed to sleep";
    machine.write(counter, "garbage\n");
    EXPECT_EQ(numbersLater(), Numbers{{}});

    machine.remove(folderOf(kIntegrated) + "drm/card0/gt");
    const std::string older = folderOf(kIntegrated) + "drm/card0/power/rc6_residency_ms";
    machine.write(older, "0\n");
    EXPECT_EQ(numbersLater(), Numbers{{}});
    machine.write(older, "1000\n");
    EXPECT_EQ(numbersLater(), Numbers{50});

    setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
    system.advance(30s);
    EXPECT_EQ(numbers(), Numbers{{}}) << "clients are there now, seen for the first time";
}

TEST_F(AcceleratorsTest, OfSeveralPartsTheOneThatSleptLeastCounts) {
    addCard(0, kIntegrated, "xe");
    const auto setIdle = [this](const char* part, const char* milliseconds) {
        machine.write(folderOf(kIntegrated) + part + "/gtidle/idle_residency_ms", milliseconds);
    };
    setClient(100, "renderD128", "drm-driver: xe\n");  // an early kernel, which says nothing of engines
    setIdle("tile0/gt0", "100\n");
    setIdle("tile0/gt1", "100\n");
    setIdle("tile1/gt2", "100\n");
    machine.makeFolder(folderOf(kIntegrated) + "tile1/gt3");
    EXPECT_EQ(numbers(), Numbers{{}});
    setIdle("tile0/gt0", "2100\n");
    setIdle("tile0/gt1", "1100\n");
    setIdle("tile1/gt2", "1500\n");
    EXPECT_EQ(numbersLater(), Numbers{50});
}

TEST_F(AcceleratorsTest, NvidiaIsAskedThroughItsLibraryOnlyWhereThereIsSuchACard) {
    addCard(0, kIntegrated, "amdgpu");
    setBusy(kIntegrated, "10\n");
    addCard(1, kDiscrete, "nvidia", "suspended");
    nvidiaPercent = 80;
    EXPECT_EQ(numbers(), (Numbers{10, {}}));
    EXPECT_EQ(nvidiaLoads, 0);
    machine.write(folderOf(kDiscrete) + "power/runtime_status", "active\n");
    EXPECT_EQ(numbers(), (Numbers{10, 80}));
    EXPECT_EQ(nvidiaSlot, kDiscrete);
}

TEST_F(AcceleratorsTest, WhatSleptBeginsAnew) {
    addCard(0, kIntegrated, "i915");
    setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
    numbers();
    machine.write(folderOf(kIntegrated) + "power/runtime_status", "suspended\n");
    numbersLater();
    machine.write(folderOf(kIntegrated) + "power/runtime_status", "active\n");
    EXPECT_EQ(numbersLater(), Numbers{{}});
    EXPECT_EQ(numbersLater(), Numbers{0});
}

TEST_F(AcceleratorsTest, AMachineWithNothingToTellIsAskedOnceAMinute) {
    const Accelerators::Answer none = accelerators.read();
    EXPECT_TRUE(none.services.empty());
    EXPECT_FALSE(none.hasSources);
    EXPECT_TRUE(Accelerators::isDue({}, system.calls.now()));
    EXPECT_FALSE(Accelerators::isDue(none, *none.readAt + 59s));
    EXPECT_TRUE(Accelerators::isDue(none, *none.readAt + 60s));

    for (const char* driver : {"virtio-pci", "virtio_gpu", "nouveau", "radeon", "vmwgfx", "qxl", "bochs-drm",
                               "ast", "simple-framebuffer", ""}) {
        machine.remove("/sys");
        addCard(0, kIntegrated, driver);
        setBusy(kIntegrated, "50\n");
        setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
        EXPECT_FALSE(accelerators.read().hasSources) << driver;
        EXPECT_EQ(numbersLater(), Numbers{{}}) << driver;
    }
    EXPECT_EQ(std::count(observer->opened.begin(), observer->opened.end(), "/proc"), 0) << "for nothing";

    machine.remove("/sys");
    addCard(0, kIntegrated, "amdgpu", "suspended");
    const Accelerators::Answer some = accelerators.read();
    EXPECT_TRUE(some.hasSources) << "it may wake up";
    EXPECT_TRUE(Accelerators::isDue(some, *some.readAt + 1s));
}

}  // namespace
}  // namespace norvane
