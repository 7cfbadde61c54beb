#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fuse.h>
#include <sys/mount.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
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

// A file system in user space whose server is this process. Until it is told to serve, nobody answers.
class OwnServer {
 public:
    static constexpr std::uint64_t kBlockBytes = 4096;
    static constexpr std::uint64_t kBlocks = 1000;
    static constexpr std::uint64_t kFreeForUsers = 300;

    OwnServer() : device_(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {}
    ~OwnServer() {
        if (!thread_.joinable()) return;
        ::umount2(point_.c_str(), MNT_DETACH);  // its end is the server's
        thread_.join();
    }

    bool isPossible() const { return static_cast<bool>(device_); }
    // A device serves one mount.
    void renew() { device_ = FileDescriptor(::open("/dev/fuse", O_RDWR | O_CLOEXEC)); }
    void setPoint(const std::string& point) { point_ = point; }
    std::string mountOptions() const {
        return "fd=" + std::to_string(device_.get()) + ",rootmode=40000,user_id=0,group_id=0";
    }
    void serve() {
        thread_ = std::thread([this] { work(); });
    }

 private:
    void work() {
        std::vector<char> request(std::size_t{1} << 20);
        for (;;) {
            const ssize_t length = ::read(device_.get(), request.data(), request.size());
            if (length < 0 && (errno == EINTR || errno == ENOENT)) continue;
            if (length < static_cast<ssize_t>(sizeof(fuse_in_header))) return;
            fuse_in_header header{};
            std::memcpy(&header, request.data(), sizeof header);
            if (header.opcode == FUSE_INIT) {
                fuse_init_out answer{};
                answer.major = FUSE_KERNEL_VERSION;
                answer.minor = FUSE_KERNEL_MINOR_VERSION;
                answer.max_write = 4096;
                reply(header.unique, 0, &answer, sizeof answer);
            } else if (header.opcode == FUSE_STATFS) {
                fuse_statfs_out answer{};
                answer.st.blocks = kBlocks;
                answer.st.bfree = 2 * kFreeForUsers;
                answer.st.bavail = kFreeForUsers;
                answer.st.bsize = 16 * kBlockBytes;
                answer.st.frsize = kBlockBytes;
                reply(header.unique, 0, &answer, sizeof answer);
            } else if (header.opcode != FUSE_FORGET && header.opcode != FUSE_BATCH_FORGET) {
                reply(header.unique, -ENOSYS, nullptr, 0);
            }
        }
    }
    void reply(std::uint64_t unique, int error, void* answer, std::size_t size) {
        fuse_out_header header{static_cast<std::uint32_t>(sizeof header + size), error, unique};
        const std::array<iovec, 2> parts{iovec{&header, sizeof header}, iovec{answer, size}};
        EXPECT_EQ(::writev(device_.get(), parts.data(), 2), static_cast<ssize_t>(header.len));
    }

    FileDescriptor device_;
    std::string point_;
    std::thread thread_;
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
    OwnServer silent;
    if (!silent.isPossible()) GTEST_SKIP() << "no file systems in user space here";
    const std::string point = base + "/my server";
    const auto isListed = [&] {
        const auto list = volumes.readRemovable();
        return list && std::any_of(list->begin(), list->end(),
                                   [&](const VolumeURL& each) { return each.path() == point; });
    };
    LinuxMainQueue queue;
    HeldQueue background;
    const auto comes = [&](auto holds) {
        return runUntil([&] {
            background.runAll();
            return holds();
        });
    };
    MountWatch watch(queue, background, RootFolder(""));
    int mounted = 0;
    int unmounted = 0;
    {
        const auto onMount = watch.onDidMount([&] { ++mounted; });
        const auto onUnmount = watch.onDidUnmount([&] { ++unmounted; });
        EXPECT_EQ(openTables(), 1u);
        background.runAll();
        for (const int round : {1, 2}) {
            ASSERT_TRUE(MountNamespace::mountAt(base + "/plumbing", "tmpfs", "none"));
            ASSERT_TRUE(MountNamespace::mountAt(point, "fuse.sshfs", "ada@host:", 0, silent.mountOptions()));
            EXPECT_TRUE(comes([&] { return mounted == round; }));
            EXPECT_TRUE(isListed()) << "without a word to its server";
            EXPECT_EQ(unmounted, round - 1);
            ASSERT_EQ(::umount2(point.c_str(), MNT_DETACH), 0);
            ASSERT_EQ(::umount((base + "/plumbing").c_str()), 0);
            EXPECT_TRUE(comes([&] { return unmounted == round; }));
            EXPECT_FALSE(isListed());
            EXPECT_EQ(mounted, round);
            silent.renew();
        }
    }
    EXPECT_EQ(openTables(), 0u) << "nobody listens";

    const auto onMount = watch.onDidMount([&] { ++mounted; });
    ASSERT_TRUE(MountNamespace::mountAt(point, "fuse.sshfs", "ada@host:", 0, silent.mountOptions()));
    ASSERT_EQ(background.tasks.size(), 1u);
    EXPECT_TRUE(comes([&] { return mounted == 3; })) << "before the first look at the table";
}

TEST(MountWatchPace, IsQuietForLongWhereALookTakesLong) {
    EXPECT_EQ(MountWatch::quietAfter(0ns), 200ms);
    EXPECT_EQ(MountWatch::quietAfter(20ms), 200ms);
    EXPECT_EQ(MountWatch::quietAfter(21ms), 210ms);
}

TEST_F(MountNamespaceTest, AServerThatHangsIsLeftOutUntilItAnswers) {
    if (!own.enter()) return;
    OwnServer server;
    if (!server.isPossible()) GTEST_SKIP() << "no file systems in user space here";
    const std::vector<std::string> before = readPaths();
    const std::string point = base + "/my server";
    server.setPoint(point);
    ASSERT_TRUE(MountNamespace::mountAt(point, "fuse.sshfs", "ada@host:", 0, server.mountOptions()));
    EXPECT_EQ(readPaths(), before);
    EXPECT_EQ(threadsForServers(), 1u);
    EXPECT_EQ(readPaths(), before);
    EXPECT_EQ(threadsForServers(), 1u) << "the one that is stuck";

    server.serve();
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (threadsForServers() > 0 && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
    const auto list = volumes.read();
    ASSERT_TRUE(list);
    const VolumeResourceValues want{{},
                                    OwnServer::kBlocks * OwnServer::kBlockBytes,
                                    OwnServer::kFreeForUsers * OwnServer::kBlockBytes,
                                    {},
                                    false,
                                    false};
    EXPECT_EQ(std::count(list->begin(), list->end(), VolumeURL(point, want)), 1);

    ASSERT_TRUE(MountNamespace::mountAt(point, "tmpfs", "none"));
    EXPECT_EQ(readPaths(), before) << "mounted over";
    ASSERT_EQ(::umount(point.c_str()), 0);
    EXPECT_EQ(readPaths().size(), before.size() + 1);
    ASSERT_TRUE(MountNamespace::mountAt(base, "tmpfs", "none"));
    EXPECT_EQ(readPaths(), before) << "mounted over as a whole";
    ASSERT_EQ(::umount(base.c_str()), 0);
}

}  // namespace
}  // namespace norvane
