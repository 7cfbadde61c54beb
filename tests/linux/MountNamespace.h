#pragma once

#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace norvane {

// Real mounts, which only this process sees: a test runs itself once more in a namespace of its own, and does
// its work there.
class MountNamespace {
 public:
    // What unshare(1) is told. "-rm" makes the process an administrator of that namespace alone, which needs
    // no privilege.
    explicit MountNamespace(std::string flags) : flags_(std::move(flags)) {}

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

    // A folder that is ours alone and where volumes may be mounted.
    const std::string& base() const { return base_; }

 private:
    // Tells the process in the namespace what it is.
    static constexpr const char* kInside = "in-its-own-namespace";

    void prepare() {
        for (const char* folder : {"/mnt", "/media", "/srv", "/opt"}) {
            if (std::filesystem::is_directory(folder)) base_ = folder;
        }
        ASSERT_FALSE(base_.empty());
        ASSERT_TRUE(mountAt(base_, "tmpfs", "none"));
    }

    void runAgain() {
        const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
        const std::string unshare = "unshare " + flags_ + ' ';
        const std::string command =
            unshare + '\'' + std::filesystem::read_symlink("/proc/self/exe").string() +
            "' --gtest_filter=" + test->test_suite_name() + '.' + test->name() + ' ' + kInside + " 2>&1";
        if (::system((unshare + "true 2>/dev/null").c_str()) != 0) {
            GTEST_SKIP() << "no namespaces for users here";
        }
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

    const std::string flags_;
    std::string base_;
};

}  // namespace norvane
