#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/fuse.h>
#include <stdio.h>
#include <sys/mount.h>
#include <sys/stat.h>
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

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/Volumes.h"

namespace norvane {
namespace {

namespace fs = std::filesystem;

// Real mounts, which only this process sees: each test runs itself once more as the administrator of a
// namespace of its own, which no privilege is needed for, and does its work there.
class MountNamespaceTest : public testing::Test {
 protected:
    // Whether this is the process with the namespace. In the other one, the test is over then.
    bool enter() {
        std::ifstream stream("/proc/self/cmdline");
        for (std::string argument; std::getline(stream, argument, '\0');) {
            if (argument != kInside) continue;
            prepare();
            return true;
        }
        runAgain();
        return false;
    }

    static bool mountAt(const std::string& point, const char* type, const char* source,
                        unsigned long flags = 0, const std::string& data = "") {
        ::mkdir(point.c_str(), 0700);
        const bool isDone = ::mount(source, point.c_str(), type, flags, data.c_str()) == 0;
        EXPECT_TRUE(isDone) << point << ": " << std::strerror(errno);
        return isDone;
    }

    std::vector<std::string> readPaths() {
        std::vector<std::string> paths;
        if (const auto list = volumes.read()) {
            for (const VolumeURL& volume : *list)
                paths.push_back(volume.path());
        }
        return paths;
    }

    // A folder that is ours alone and where volumes may be mounted.
    std::string base;
    Volumes volumes{RootFolder(""), SystemCalls::real()};

 private:
    // Tells the process in the namespace what it is.
    static constexpr const char* kInside = "in-its-own-namespace";

    void prepare() {
        for (const char* folder : {"/mnt", "/media", "/srv", "/opt"}) {
            if (fs::is_directory(folder)) base = folder;
        }
        ASSERT_FALSE(base.empty());
        ASSERT_TRUE(mountAt(base, "tmpfs", "none"));
    }

    void runAgain() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        const std::string command = "unshare -rm '" + fs::read_symlink("/proc/self/exe").string() +
                                    "' --gtest_filter=" + test->test_suite_name() + '.' + test->name() + ' ' +
                                    kInside + " 2>&1";
        if (::system("unshare -rm true 2>/dev/null") != 0) GTEST_SKIP() << "no namespaces for users here";
        FILE* const output = ::popen(command.c_str(), "r");
        ASSERT_NE(output, nullptr);
        std::string text;
        std::array<char, 4096> buffer{};
        while (const std::size_t length = ::fread(buffer.data(), 1, buffer.size(), output))
            text.append(buffer.data(), length);
        const int status = ::pclose(output);
        EXPECT_EQ(status, 0) << text;
        EXPECT_NE(text.find("Running 1 test "), std::string::npos) << text;
        if (text.find("[  SKIPPED ]") != std::string::npos) GTEST_SKIP() << text;
    }
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
                reply(header.unique, 0, answer);
            } else if (header.opcode == FUSE_STATFS) {
                fuse_statfs_out answer{};
                answer.st.blocks = kBlocks;
                answer.st.bfree = 2 * kFreeForUsers;
                answer.st.bavail = kFreeForUsers;
                answer.st.bsize = 16 * kBlockBytes;
                answer.st.frsize = kBlockBytes;
                reply(header.unique, 0, answer);
            } else if (header.opcode != FUSE_FORGET && header.opcode != FUSE_BATCH_FORGET) {
                reply(header.unique, -ENOSYS, std::array<char, 0>{});
            }
        }
    }
    template <typename Answer>
    void reply(std::uint64_t unique, int error, const Answer& answer) {
        const std::size_t size = error == 0 ? sizeof answer : 0;
        fuse_out_header header{};
        header.len = static_cast<std::uint32_t>(sizeof header + size);
        header.error = error;
        header.unique = unique;
        std::vector<char> bytes(header.len);
        std::memcpy(bytes.data(), &header, sizeof header);
        if (size > 0) std::memcpy(bytes.data() + sizeof header, &answer, size);
        EXPECT_EQ(::write(device_.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }

    FileDescriptor device_;
    std::string point_;
    std::thread thread_;
};

std::size_t threadsForServers() {
    std::size_t count = 0;
    for (const auto& task : fs::directory_iterator("/proc/self/task")) {
        std::string name;
        std::ifstream stream(task.path() / "comm");
        if (std::getline(stream, name) && name == "volume server") ++count;
    }
    return count;
}

TEST_F(MountNamespaceTest, BindMountsAddNothingAndWhatIsCoveredGoes) {
    if (!enter()) return;
    const std::vector<std::string> before = readPaths();
    ASSERT_TRUE(mountAt(base + "/copy of it", "", "/", MS_BIND | MS_REC));
    ASSERT_TRUE(mountAt(base + "/home", "", "/usr", MS_BIND));
    EXPECT_EQ(readPaths(), before);
}

TEST_F(MountNamespaceTest, AServerThatHangsIsLeftOutUntilItAnswers) {
    if (!enter()) return;
    OwnServer server;
    if (!server.isPossible()) GTEST_SKIP() << "no file systems in user space here";
    const std::vector<std::string> before = readPaths();
    const std::string point = base + "/my server";
    server.setPoint(point);
    ASSERT_TRUE(mountAt(point, "fuse.sshfs", "ada@host:", 0, server.mountOptions()));
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
    const auto found = std::find_if(list->begin(), list->end(),
                                    [&](const VolumeURL& volume) { return volume.path() == point; });
    ASSERT_NE(found, list->end());
    const VolumeResourceValues want{{},
                                    OwnServer::kBlocks * OwnServer::kBlockBytes,
                                    OwnServer::kFreeForUsers * OwnServer::kBlockBytes,
                                    {},
                                    false,
                                    false};
    EXPECT_EQ(found->resourceValues(), want);

    ASSERT_TRUE(mountAt(point, "tmpfs", "none"));
    EXPECT_EQ(readPaths(), before) << "mounted over";
    ASSERT_EQ(::umount(point.c_str()), 0);
    EXPECT_EQ(readPaths().size(), before.size() + 1);
    ASSERT_TRUE(mountAt(base, "tmpfs", "none"));
    EXPECT_EQ(readPaths(), before) << "mounted over as a whole";
    ASSERT_EQ(::umount(base.c_str()), 0);
}

}  // namespace
}  // namespace norvane
