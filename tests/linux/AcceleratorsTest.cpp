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
    std::string nvidiaSlots;
    std::optional<Accelerators> accelerators;

    AcceleratorsTest() {
        system.calls.userId = ::getuid();
        // A driver that tells 80 %.
        system.calls.loadNvidiaFunctions = [this]() -> std::optional<NvidiaFunctions> {
            return NvidiaFunctions{[] { return 0; }, [] { return 0; },
                                   [this](const char* slot, NvidiaFunctions::Device* device) {
                                       nvidiaSlots += slot;
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
            machine.remove("/sys/class/drm/" + node);
            machine.remove(folder + "/device");
            machine.link("/sys/class/drm/" + node, "../../.." + folder);
            machine.link(folder + "/device", "../../../" + device);
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
    // A descriptor, as in "100/4", of a client whose engine has been busy for so long.
    void setClient(const std::string& descriptor, const std::string& node, const std::string& id,
                   int milliseconds, const std::string& more = "") {
        const auto slash = descriptor.find('/');
        const std::string process = "/proc/" + descriptor.substr(0, slash);
        const std::string number = descriptor.substr(slash);
        machine.remove(process + "/fd" + number);
        machine.link(process + "/fd" + number, node);
        machine.write(process + "/fdinfo" + number, "drm-client-id: " + id + "\ndrm-engine-render: " +
                                                        std::to_string(milliseconds) + "000000 ns\n" + more);
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
    bool hasTouched(const std::string& part) const {
        const auto has = [&](const std::string& path) { return path.find(part) != std::string::npos; };
        return std::any_of(observer->opened.begin(), observer->opened.end(), has) ||
               std::any_of(observer->read.begin(), observer->read.end(), has);
    }
};

TEST_F(AcceleratorsTest, SleepingDevicesAreLeftAloneBesideABusyOne) {
    addCard(0, kIntegrated, "i915");
    addCard(1, kDiscrete, "amdgpu");
    addCard(2, "0000:02:00.0", "nvidia");
    setStatus(kDiscrete, "suspended\n");
    setStatus("0000:02:00.0", "suspended\n");
    setBusy(kDiscrete, "90\n");
    setClient("100/4", "/dev/dri/renderD128", "1", 0);
    setClient("200/4", "/dev/dri/renderD129", "2", 0);
    EXPECT_EQ(numbers(), "none none none");
    setClient("100/4", "/dev/dri/renderD128", "1", 500);
    EXPECT_EQ(numbersLater(), "25 none none");
    EXPECT_FALSE(hasTouched("/proc/200/fdinfo"));
    std::erase(observer->opened, "/sys/class/drm/card1/device/power/runtime_status");
    std::erase(observer->read, "/sys/class/drm/card1/device/power/runtime_status");
    EXPECT_FALSE(hasTouched("card1"));
    EXPECT_EQ(nvidiaSlots, "");
    setStatus(kDiscrete, "active\n");
    setStatus("0000:02:00.0", "active\n");
    setStatus(kIntegrated, "suspended\n");
    EXPECT_EQ(numbersLater(), "none 90 80");
    EXPECT_EQ(nvidiaSlots, "0000:02:00.0");
    setStatus(kIntegrated, "active\n");
    EXPECT_EQ(numbersLater(), "none 90 80") << "what slept begins anew";
}

TEST_F(AcceleratorsTest, ADriverThatSaysANumberIsAskedWhereTheDeviceIsAwake) {
    addCard(0, kDiscrete, "amdgpu");
    addCard(1, kDiscrete, "amdgpu");  // another card of the same device
    machine.link("/sys/class/drm/card0-DP-1", "../../devices/bus/0000:01:00.0/drm/card0/card0-DP-1");
    for (const auto& [text, want] :
         Rows{{"0", "0"}, {"100\n", "100"}, {"101", "none"}, {"-1", "none"}, {"5 6", "none"}, {"50", "50"}}) {
        setBusy(kDiscrete, text);
        EXPECT_EQ(numbers(), want) << text;
    }
    machine.remove("/sys/class/drm/card1");
    for (const auto& [status, want] :
         Rows{{"active\n", "50"}, {"unsupported\n", "50"}, {"resuming\n", "none"}, {"", "none"}}) {
        setStatus(kDiscrete, status);
        EXPECT_EQ(numbers(), want) << status;
    }
    machine.remove(folderOf(kDiscrete) + "power/runtime_status");
    machine.makeFolder(folderOf(kDiscrete) + "power/runtime_status");
    EXPECT_EQ(numbers(), "none") << "it does not say";
    machine.remove(folderOf(kDiscrete) + "power");
    EXPECT_EQ(numbers(), "50") << "it never sleeps";
}

TEST_F(AcceleratorsTest, ClientsAreThoseOfOurOwnProcessesEachCountedOnce) {
    constexpr const char* kNode = "/dev/dri/card0";
    addCard(0, kIntegrated, "panfrost");
    const auto setAll = [&](int milliseconds) {
        setClient("100/4", "/dev/dri/renderD128", "1", milliseconds);
        setClient("100/5", kNode, "1", milliseconds);
        setClient("200/4", kNode, "1", milliseconds);  // inherited
        setClient("200/5", kNode, "2", milliseconds / 5, "drm-pdev: 0000:00:02.0\n");
        setClient("200/6", kNode, "3", milliseconds, "drm-pdev: 0000:01:00.0\n");  // another one by now
        setClient("200/7", "/home/ada/dev/dri/card0", "4", milliseconds);
        setClient("self/4", kNode, "5", milliseconds);
    };
    setAll(0);
    // What is broken or went in between.
    machine.link("/proc/200/fd/1", kNode);
    machine.link("/proc/200/fd/2", kNode);
    machine.makeFolder("/proc/200/fdinfo/2");
    machine.link("/proc/200/fd/3", kNode);
    machine.write("/proc/200/fdinfo/3", std::string("\0\xff\n:\n", 5));
    machine.makeFolder("/proc/300");
    EXPECT_EQ(numbers(), "none");
    setAll(1000);
    EXPECT_EQ(numbersLater(), "60");
    EXPECT_FALSE(hasTouched("/proc/200/fdinfo/7") || hasTouched("/proc/self"));

    ++system.calls.userId;
    accelerators.emplace(machine.root(observer), system.calls);
    observer->forget();
    numbers();
    EXPECT_FALSE(hasTouched("/proc/")) << "processes of somebody else";
}

TEST_F(AcceleratorsTest, ClientsAreLookedForAmongAllProcessesEveryThirtySeconds) {
    addCard(0, kIntegrated, "xe");
    addCard(1, kDiscrete, "xe");
    setStatus(kDiscrete, "suspended\n");
    setClient("100/4", "/dev/dri/card0", "1", 0);
    setClient("101/4", "/dev/null", "2", 0);
    setClient("102/4", "/dev/dri/card1", "3", 0);
    numbers();
    machine.remove("/proc/100/fd/4");
    setClient("100/5", "/dev/dri/card0", "1", 1000);
    setClient("101/4", "/dev/dri/card0", "2", 0);
    setStatus(kDiscrete, "active\n");
    observer->forget();
    EXPECT_EQ(numbersLater(), "50 none") << "the same process goes on with another descriptor";
    setClient("102/4", "/dev/dri/card1", "3", 500);
    EXPECT_EQ(numbersLater(), "0 25") << "the process was known while its device slept";
    EXPECT_FALSE(hasTouched("/proc/101"));
    system.advance(26s);
    numbers();
    EXPECT_TRUE(hasTouched("/proc/101"));
}

TEST_F(AcceleratorsTest, WithoutClientsTheTimeThatWasNotSleptCounts) {
    addCard(0, kIntegrated, "i915");
    for (const auto& [text, want] : Rows{
             {"1000", "none"}, {"2500", "25"}, {"9000", "0"}, {"10", "none"}, {"10", "100"}, {"?", "none"}}) {
        machine.write(folderOf(kIntegrated) + "drm/card0/gt/gt0/rc6_residency_ms", text);
        EXPECT_EQ(numbersLater(), want) << text;
    }
    machine.remove(folderOf(kIntegrated) + "drm/card0/gt");
    const std::string older = folderOf(kIntegrated) + "drm/card0/power/rc6_residency_ms";
    machine.write(older, "0\n");
    EXPECT_EQ(numbersLater(), "none");
    machine.write(older, "1000\n");
    EXPECT_EQ(numbersLater(), "50");
    addCard(0, kIntegrated, "xe");
    machine.link("/proc/100/fd/4", "/dev/dri/card0");
    machine.write("/proc/100/fdinfo/4", "drm-client-id: 1\n");  // a kernel that says nothing of engines
    const auto setIdle = [&](const char* first, const char* second) {
        machine.write(folderOf(kIntegrated) + "tile0/gt0/gtidle/idle_residency_ms", first);
        machine.write(folderOf(kIntegrated) + "tile1/gt1/gtidle/idle_residency_ms", second);
        return numbersLater();
    };
    EXPECT_EQ(setIdle("100", "100"), "none");
    EXPECT_EQ(setIdle("2100", "1100"), "50") << "the part that slept least";
    setClient("100/4", "/dev/dri/renderD128", "1", 0);
    system.advance(30s);
    EXPECT_EQ(setIdle("2100", "1100"), "none") << "clients are there now, seen for the first time";
}

TEST_F(AcceleratorsTest, AMachineWithNothingToTellIsAskedOnceAMinute) {
    const Accelerators::Answer none = accelerators->read();
    EXPECT_FALSE(Accelerators::isDue(none, *none.readAt + 59s));
    EXPECT_TRUE(Accelerators::isDue(none, *none.readAt + 60s));
    setClient("100/4", "/dev/dri/renderD128", "1", 0);
    addCard(0, kIntegrated, "virtio_gpu");
    setBusy(kIntegrated, "50\n");
    EXPECT_EQ(numbers(), "none");
    EXPECT_FALSE(accelerators->read().hasSources);
    EXPECT_FALSE(hasTouched("/proc")) << "for nothing";
    addCard(1, kDiscrete, "amdgpu");
    setStatus(kDiscrete, "suspended\n");
    EXPECT_TRUE(accelerators->read().hasSources) << "it may wake up";
}

}  // namespace
}  // namespace norvane
