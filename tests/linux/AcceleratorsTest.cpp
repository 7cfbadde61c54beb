#include "platform/linux/Accelerators.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "CountingFileObserver.h"
#include "FakeSystemCalls.h"
#include "PropertyText.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Rows = std::vector<std::pair<const char*, const char*>>;

class AcceleratorsTest : public testing::Test {
 protected:
    static constexpr const char* kIntegrated = "0000:00:02.0";
    static constexpr const char* kDiscrete = "0000:01:00.0";

    TemporaryFolder machine;
    FakeSystemCalls system;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
    int nvidiaLoads = 0;
    std::string nvidiaSlot;
    std::optional<Accelerators> accelerators;

    AcceleratorsTest() {
        system.calls.userId = ::getuid();
        // A driver that tells 80 %.
        system.calls.loadNvidiaFunctions = [this]() -> std::optional<NvidiaFunctions> {
            ++nvidiaLoads;
            return NvidiaFunctions{[] { return 0; }, [] { return 0; },
                                   [this](const char* slot, NvidiaFunctions::Device* device) {
                                       nvidiaSlot = slot;
                                       *device = this;
                                       return 0;
                                   },
                                   [](NvidiaFunctions::Device, NvidiaFunctions::Utilization* utilization) {
                                       utilization->gpu = 80;
                                       return 0;
                                   }};
        };
        accelerators.emplace(machine.root(observer), system.calls);
    }

    static std::string folderOf(const std::string& device) { return "/sys/devices/bus/" + device + "/"; }

    // As the kernel lays it out: the class folder holds links into the device's folder.
    void addCard(int number, const std::string& device, const std::string& driver) {
        for (const std::string& node :
             {"card" + std::to_string(number), "renderD" + std::to_string(128 + number)}) {
            const std::string folder = folderOf(device) + "drm/" + node;
            machine.link("/sys/class/drm/" + node, "../../.." + folder);
            machine.link(folder + "/device", "../../../" + device);
            machine.write(folder + "/dev", "226:0\n");
        }
        machine.remove(folderOf(device) + "driver");
        machine.link(folderOf(device) + "driver", "../../../bus/pci/drivers/" + driver);
        setStatus(device, "active\n");
    }
    void setStatus(const std::string& device, std::string_view text) {
        machine.write(folderOf(device) + "power/runtime_status", text);
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
    // The percentages of all, "none" for one that tells nothing.
    std::string numbers() {
        std::string all;
        for (const RegistryEntry& service : accelerators->read().services)
            all += ' ' + propertyText(service, "PerformanceStatistics", "Device Utilization %");
        return all.substr(all.empty() ? 0 : 1);
    }
    std::string numbersLater() {
        system.advance(2s);
        return numbers();
    }
};

TEST_F(AcceleratorsTest, ASleepingDeviceIsLeftAloneBesideABusyOne) {
    addCard(0, kIntegrated, "i915");
    addCard(1, kDiscrete, "amdgpu");
    setStatus(kDiscrete, "suspended\n");
    setBusy(kDiscrete, "90\n");
    setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
    setClient(200, "renderD129", "drm-engine-gfx: 0 ns\n");
    EXPECT_EQ(numbers(), "none none");
    setClient(100, "renderD128", "drm-engine-render: 500000000 ns\n");
    EXPECT_EQ(numbersLater(), "25 none");
    for (const std::vector<std::string>* paths : {&observer->opened, &observer->read}) {
        for (const std::string& path : *paths) {
            EXPECT_FALSE(path.starts_with("/proc/200/fdinfo")) << path;
            EXPECT_TRUE(path.find("card1") == std::string::npos ||
                        path == "/sys/class/drm/card1/device/power/runtime_status")
                << path;
        }
    }
    setStatus(kDiscrete, "active\n");
    EXPECT_EQ(numbersLater(), "0 90");
}

TEST_F(AcceleratorsTest, ADriverThatSaysANumberIsAskedWhereTheDeviceIsAwake) {
    addCard(0, kDiscrete, "amdgpu");
    addCard(1, kDiscrete, "amdgpu");  // a second node of the same device
    machine.link("/sys/class/drm/card0-DP-1", "../../devices/bus/0000:01:00.0/drm/card0/card0-DP-1");
    machine.link(folderOf(kDiscrete) + "drm/card0/card0-DP-1/device", "../../card0");
    machine.write("/sys/class/drm/version", "drm 1.1.0 20060810\n");
    for (const auto& [text, want] : Rows{{"0\n", "0"},
                                         {"100\n", "100"},
                                         {"101\n", "none"},
                                         {"-1\n", "none"},
                                         {"", "none"},
                                         {"5 6\n", "none"},
                                         {"18446744073709551616\n", "none"},
                                         {"50\n", "50"}}) {
        setBusy(kDiscrete, text);
        EXPECT_EQ(numbers(), want) << text;
    }
    machine.remove("/sys/class/drm/card1");
    for (const auto& [status, want] : Rows{{"active\n", "50"},
                                           {"unsupported\n", "50"},
                                           {"suspended\n", "none"},
                                           {"suspending\n", "none"},
                                           {"resuming\n", "none"},
                                           {"", "none"}}) {
        setStatus(kDiscrete, status);
        EXPECT_EQ(numbers(), want) << status;
    }
    machine.remove(folderOf(kDiscrete) + "power/runtime_status");
    machine.makeFolder(folderOf(kDiscrete) + "power/runtime_status");
    EXPECT_EQ(numbers(), "none") << "it does not say";
    machine.remove(folderOf(kDiscrete) + "power");
    EXPECT_EQ(numbers(), "50") << "it never sleeps";
    machine.remove(folderOf(kDiscrete) + "gpu_busy_percent");
    EXPECT_EQ(numbers(), "none");
    machine.makeFolder(folderOf(kDiscrete) + "gpu_busy_percent");
    EXPECT_EQ(numbers(), "none") << "there, but cannot be read now";
}

TEST_F(AcceleratorsTest, DriversThatTellOfTheirClients) {
    for (const char* driver : {"i915", "panfrost", "panthor", "msm_dpu", "v3d", "etnaviv", "lima", "asahi"}) {
        machine.remove("/sys");
        addCard(0, "fd4a0000.gpu", driver);
        setClient(100, "renderD128", "drm-engine-x: 0 ns\ndrm-engine-y: 0 ns\ndrm-engine-capacity-y: 2\n");
        setClient(200, "card0", "drm-engine-x: 0 ns\n");
        accelerators.emplace(machine.root(), system.calls);
        EXPECT_EQ(numbers(), "none") << driver;
        setClient(100, "renderD128",
                  "drm-engine-x: 500000000 ns\ndrm-engine-y: 2000000000 ns\ndrm-engine-capacity-y: 2\n");
        setClient(200, "card0", "drm-engine-x: 611000000 ns\n");
        EXPECT_EQ(numbersLater(), "56") << driver << ": 55.55, rounded";
    }
    machine.remove("/sys");
    addCard(0, kIntegrated, "xe");
    setClient(100, "renderD128", "drm-cycles-rcs: 100\ndrm-total-cycles-rcs: 1000\n");
    numbers();
    setClient(100, "renderD128", "drm-cycles-rcs: 400\ndrm-total-cycles-rcs: 2000\n");
    EXPECT_EQ(numbersLater(), "30") << "cycles";
    setStatus(kIntegrated, "suspended\n");
    numbersLater();
    setStatus(kIntegrated, "active\n");
    EXPECT_EQ(numbersLater(), "none") << "what slept begins anew";
}

TEST_F(AcceleratorsTest, WithoutClientsTheTimeThatWasNotSleptCounts) {
    addCard(0, kIntegrated, "i915");
    const std::string counter = folderOf(kIntegrated) + "drm/card0/gt/gt0/rc6_residency_ms";
    EXPECT_EQ(numbers(), "none") << "no counter either";
    for (const auto& [text, want] : Rows{{"1000\n", "none"},
                                         {"2500\n", "25"},
                                         {"9000\n", "0"},
                                         {"10\n", "none"},
                                         {"10\n", "100"},
                                         {"0\n", "none"},
                                         {"0\n", "none"},
                                         {"garbage\n", "none"}}) {
        machine.write(counter, text);
        EXPECT_EQ(numbersLater(), want) << text;
    }
    machine.remove(folderOf(kIntegrated) + "drm/card0/gt");
    const std::string older = folderOf(kIntegrated) + "drm/card0/power/rc6_residency_ms";
    machine.write(older, "0\n");
    EXPECT_EQ(numbersLater(), "none");
    machine.write(older, "1000\n");
    EXPECT_EQ(numbersLater(), "50");

    setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
    system.advance(30s);
    EXPECT_EQ(numbers(), "none") << "clients are there now, seen for the first time";
}

TEST_F(AcceleratorsTest, OfSeveralPartsTheOneThatSleptLeastCounts) {
    addCard(0, kIntegrated, "xe");
    const auto setIdle = [this](const char* first, const char* second, const char* third) {
        const std::string folder = folderOf(kIntegrated);
        machine.write(folder + "tile0/gt0/gtidle/idle_residency_ms", first);
        machine.write(folder + "tile0/gt1/gtidle/idle_residency_ms", second);
        machine.write(folder + "tile1/gt2/gtidle/idle_residency_ms", third);
    };
    setClient(100, "renderD128", "drm-driver: xe\n");  // an early kernel, which says nothing of engines
    setIdle("100\n", "100\n", "100\n");
    machine.makeFolder(folderOf(kIntegrated) + "tile1/gt3");
    EXPECT_EQ(numbers(), "none");
    setIdle("2100\n", "1100\n", "1500\n");
    EXPECT_EQ(numbersLater(), "50");
}

TEST_F(AcceleratorsTest, NvidiaIsAskedThroughItsLibraryOnlyWhereThereIsSuchACard) {
    addCard(0, kIntegrated, "amdgpu");
    setBusy(kIntegrated, "10\n");
    addCard(1, kDiscrete, "nvidia");
    setStatus(kDiscrete, "suspended\n");
    EXPECT_EQ(numbers(), "10 none");
    EXPECT_EQ(nvidiaLoads, 0);
    setStatus(kDiscrete, "active\n");
    EXPECT_EQ(numbers(), "10 80");
    EXPECT_EQ(nvidiaSlot, kDiscrete);
}

TEST_F(AcceleratorsTest, AMachineWithNothingToTellIsAskedOnceAMinute) {
    const Accelerators::Answer none = accelerators->read();
    EXPECT_TRUE(none.services.empty());
    EXPECT_FALSE(none.hasSources);
    EXPECT_TRUE(Accelerators::isDue({}, system.calls.now()));
    EXPECT_FALSE(Accelerators::isDue(none, *none.readAt + 59s));
    EXPECT_TRUE(Accelerators::isDue(none, *none.readAt + 60s));

    for (const char* driver : {"virtio_gpu", "nouveau", "simple-framebuffer", ""}) {
        machine.remove("/sys");
        addCard(0, kIntegrated, driver);
        setBusy(kIntegrated, "50\n");
        setClient(100, "renderD128", "drm-engine-render: 0 ns\n");
        EXPECT_FALSE(accelerators->read().hasSources) << driver;
        EXPECT_EQ(numbersLater(), "none") << driver;
    }
    EXPECT_EQ(std::count(observer->opened.begin(), observer->opened.end(), "/proc"), 0) << "for nothing";

    addCard(1, kDiscrete, "amdgpu");
    setStatus(kDiscrete, "suspended\n");
    const Accelerators::Answer some = accelerators->read();
    EXPECT_TRUE(some.hasSources) << "it may wake up";
    EXPECT_TRUE(Accelerators::isDue(some, *some.readAt + 1s));
}

}  // namespace
}  // namespace norvane
