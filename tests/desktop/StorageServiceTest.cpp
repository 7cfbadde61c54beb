#include <fcntl.h>
#include <gtest/gtest.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "bus/BusPeer.h"
#include "bus/ChildProcess.h"
#include "bus/PrivateBus.h"
#include "linux/MountNamespace.h"
#include "linux/RunLoop.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxBackgroundQueue.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/Volumes.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

constexpr const char* kServicePath = "/usr/libexec/udisks2/udisksd";
constexpr const char* kDeviceManager = "/lib/systemd/systemd-udevd";

// An image as a disk, for as long as this lives and nobody takes it away.
class LoopDevice {
 public:
    explicit LoopDevice(const std::string& image) {
        const std::string record = image + ".device";
        if (std::system(("losetup --find --show '" + image + "' >" + record).c_str()) == 0)
            std::ifstream(record) >> path_;
    }
    ~LoopDevice() {
        if (!isThere()) return;
        EXPECT_EQ(std::system(("losetup --detach " + path_).c_str()), 0);
    }
    LoopDevice(const LoopDevice&) = delete;
    LoopDevice& operator=(const LoopDevice&) = delete;

    const std::string& path() const { return path_; }
    bool isThere() const {
        const std::string name = fs::path(path_).filename().string();
        return !name.empty() && fs::exists("/sys/block/" + name + "/loop/backing_file");
    }

 private:
    std::string path_;
};

// The storage service as people have it, on a bus of its own, and with mounts that nobody else sees.
TEST(StorageService, EjectsAnImageThatIsMountedAsADisk) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root may mount an image as a disk";
    if (!fs::exists(kServicePath)) GTEST_SKIP() << "no storage service here";
    MountNamespace own("-m");
    if (!own.enter()) return;

    // Its state is ours alone, and so is the device manager where there is none.
    std::unique_ptr<ChildProcess> deviceManager;
    if (fs::exists("/run/udev/control")) {
        fs::create_directory("/run/udisks2");
        ASSERT_TRUE(MountNamespace::mountAt("/run/udisks2", "tmpfs", "none"));
    } else {
        if (!fs::exists(kDeviceManager)) GTEST_SKIP() << "no device manager here";
        ASSERT_TRUE(MountNamespace::mountAt("/run", "tmpfs", "none"));
        deviceManager = std::make_unique<ChildProcess>(std::vector<std::string>{kDeviceManager});
        ASSERT_TRUE(runUntil([] { return fs::exists("/run/udev/control"); }));
    }
    const PrivateBus bus;
    const ChildProcess service({kServicePath}, {{"DBUS_SYSTEM_BUS_ADDRESS", bus.address()}});
    ASSERT_TRUE(BusPeer(bus.address()).comesToHaveOwner("org.freedesktop.UDisks2"));
    const std::string image = own.base() + "/image";
    ASSERT_EQ(std::system(("truncate -s 32M " + image + " && mkfs.ext4 -q -L STICK " + image).c_str()), 0);
    const LoopDevice device(image);
    if (!device.isThere()) GTEST_SKIP() << "no loop devices here";
    const std::string point = own.base() + "/stick";

    LinuxMainQueue queue;
    LinuxBackgroundQueue background;
    BusConnection connection(queue, bus.address(), {.firstAttempt = 0ns});
    LinuxWorkspace workspace(connection, connection, queue, background, RootFolder(""));
    int changes = 0;
    const auto onMount = workspace.onDidMount([&] { ++changes; });
    const auto onUnmount = workspace.onDidUnmount([&] { ++changes; });
    ASSERT_TRUE(MountNamespace::mountAt(point, "ext4", device.path().c_str()));
    EXPECT_TRUE(runUntil([&] { return changes > 0; }));
    const auto volume = [&]() -> std::optional<VolumeResourceValues> {
        const auto list = Volumes(RootFolder(""), SystemCalls::real()).readRemovable();
        for (const VolumeURL& each : list.value_or(Volumes::List())) {
            if (each.path() == point) return each.resourceValues();
        }
        return std::nullopt;
    };
    ASSERT_TRUE(volume());
    EXPECT_EQ(volume()->volumeIsInternal, false);
    EXPECT_EQ(volume()->volumeIsEjectable, true);
    EXPECT_GT(volume()->volumeTotalCapacity, 16 << 20);
    EXPECT_TRUE(runUntil([&] { return volume()->volumeName == "STICK"; }))
        << "once the device manager has looked";

    const auto ejected = [&] {
        std::optional<std::string> end;
        workspace.unmountAndEjectDevice(point, [&](const auto& error) { end = error.value_or(""); });
        EXPECT_TRUE(runUntil([&] { return end.has_value(); }));
        return end.value_or("nothing");
    };
    {
        const FileDescriptor user(::open(point.c_str(), O_RDONLY | O_CLOEXEC));
        ASSERT_TRUE(user);
        // Which the service knows of the device a moment after the kernel does.
        std::string error;
        EXPECT_TRUE(runUntil([&] { return (error = ejected()).find("busy") != std::string::npos; })) << error;
        EXPECT_TRUE(volume() && device.isThere());
    }
    changes = 0;
    EXPECT_EQ(ejected(), "");
    EXPECT_FALSE(volume() || device.isThere());
    EXPECT_TRUE(runUntil([&] { return changes > 0; }));
}

}  // namespace
}  // namespace norvane
