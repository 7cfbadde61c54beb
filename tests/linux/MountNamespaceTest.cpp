#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "HeldQueue.h"
#include "MountNamespace.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/MountWatch.h"
#include "platform/linux/Volumes.h"
#include "RunLoop.h"

namespace norvane {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

class MountNamespaceTest : public testing::Test {
 protected:
    std::vector<std::string> readPaths() {
        std::vector<std::string> paths;
        if (const auto list = volumes.read()) {
            for (const VolumeURL& volume : *list)
                paths.push_back(volume.path());
        }
        return paths;
    }

    MountNamespace own{"-rm"};
    const std::string& base = own.base();
    Volumes volumes{RootFolder(""), SystemCalls::real()};
};

// A file system in user space, mounted while this lives. Its server, this process, never answers.
class HungServer {
 public:
    explicit HungServer(const std::string& point) : point_(point) {
        MountNamespace::mountAt(
            point, "fuse.sshfs", "ada@host:", 0,
            "fd=" + std::to_string(device_.get()) + ",rootmode=40000,user_id=0,group_id=0");
    }
    ~HungServer() { EXPECT_EQ(::umount2(point_.c_str(), MNT_DETACH), 0); }
    HungServer(const HungServer&) = delete;
    HungServer& operator=(const HungServer&) = delete;

    static FileDescriptor open() { return FileDescriptor(::open("/dev/fuse", O_RDWR | O_CLOEXEC)); }

 private:
    FileDescriptor device_ = open();
    std::string point_;
};

std::size_t threadsForServers() {
    std::size_t count = 0;
    for (const auto& task : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        if (std::getline(std::ifstream(task.path() / "comm"), name) && name == "volume server") ++count;
    }
    return count;
}

std::size_t openTables() {
    std::size_t count = 0;
    for (const auto& file : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        if (fs::read_symlink(file.path(), gone).filename() == "mountinfo") ++count;
    }
    return count;
}

TEST_F(MountNamespaceTest, BindMountsAddNothingAndWhatIsCoveredGoes) {
    if (!own.enter()) return;
    const std::vector<std::string> before = readPaths();
    ASSERT_TRUE(MountNamespace::mountAt(base + "/copy of it", "", "/", MS_BIND | MS_REC));
    ASSERT_TRUE(MountNamespace::mountAt(base + "/home", "", "/usr", MS_BIND));
    EXPECT_EQ(readPaths(), before);
}

TEST_F(MountNamespaceTest, ListenersHearOfVolumesThatComeAndGo) {
    if (!own.enter()) return;
    if (!HungServer::open()) GTEST_SKIP() << "no file systems in user space here";
    const std::string point = base + "/my server";
    const auto isListed = [&] {
        const auto list = volumes.readRemovable();
        return list && std::any_of(list->begin(), list->end(),
                                   [&](const VolumeURL& each) { return each.path() == point; });
    };
    LinuxMainQueue queue;
    HeldQueue background;
    int mounted = 0;
    int unmounted = 0;
    const auto comes = [&](const int& count, int want) {
        return runUntil([&] {
            background.runAll();
            return count == want;
        });
    };
    MountWatch watch(queue, background, RootFolder(""));
    {
        const auto onMount = watch.onDidMount([&] { ++mounted; });
        const auto onUnmount = watch.onDidUnmount([&] { ++unmounted; });
        EXPECT_EQ(openTables(), 1u);
        background.runAll();
        for (const int round : {1, 2}) {
            {
                const HungServer silent(point);
                ASSERT_TRUE(MountNamespace::mountAt(base + "/plumbing", "tmpfs", "none"));
                EXPECT_TRUE(comes(mounted, round));
                EXPECT_TRUE(isListed()) << "without a word to its server";
                EXPECT_EQ(unmounted, round - 1);
            }
            ASSERT_EQ(::umount((base + "/plumbing").c_str()), 0);
            EXPECT_TRUE(comes(unmounted, round));
            EXPECT_FALSE(isListed());
            EXPECT_EQ(mounted, round);
        }
    }
    EXPECT_EQ(openTables(), 0u) << "nobody listens";

    const auto onMount = watch.onDidMount([&] { ++mounted; });
    const HungServer silent(point);
    ASSERT_EQ(background.tasks.size(), 1u);
    EXPECT_TRUE(comes(mounted, 3)) << "before the first look at the table";
    EXPECT_EQ(MountWatch::quietAfter(20ms), 200ms);
    EXPECT_EQ(MountWatch::quietAfter(21ms), 210ms) << "quiet for long where a look takes long";
}

TEST_F(MountNamespaceTest, AServerThatHangsIsLeftOutAndHoldsOneThread) {
    if (!own.enter()) return;
    if (!HungServer::open()) GTEST_SKIP() << "no file systems in user space here";
    const std::vector<std::string> before = readPaths();
    {
        const HungServer server(base + "/my server");
        for (const int round : {1, 2}) {
            EXPECT_EQ(readPaths(), before);
            EXPECT_EQ(threadsForServers(), 1u) << "the one that is stuck, " << round;
        }
    }
    const auto end = std::chrono::steady_clock::now() + 60s;
    while (threadsForServers() > 0 && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    EXPECT_EQ(threadsForServers(), 0u) << "free again";
}

}  // namespace
}  // namespace norvane
