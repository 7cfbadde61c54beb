#include <gtest/gtest.h>

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <unistd.h>
#include <string>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxStandardOutput.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

// What has been written so far.
std::string takeAll(const FileDescriptor& end) {
    std::string all;
    char bytes[4096];
    pollfd ready{end.get(), POLLIN, 0};
    while (::poll(&ready, 1, 0) == 1 && (ready.revents & POLLIN) != 0) {
        const ssize_t length = ::read(end.get(), bytes, sizeof bytes);
        if (length <= 0) break;
        all.append(bytes, static_cast<std::size_t>(length));
    }
    return all;
}

TEST(StandardOutput, AppendsToAFileWhatOthersWriteThereToo) {
    const TemporaryFolder folder;
    folder.write("/log", "");
    const FileDescriptor file(::open((folder.path() + "/log").c_str(), O_WRONLY | O_CLOEXEC));
    LinuxStandardOutput output(file.get());
    output.printLine("ours");
    ASSERT_EQ(::write(file.get(), "theirs\n", 7), 7);
    output.printLine("");
    EXPECT_EQ(folder.text("/log"), "ours\ntheirs\n\n");
    LinuxStandardOutput(-1).printLine("lost");
}

TEST(StandardOutput, WaitsForNobodyWhoDoesNotReadAndLivesOnWithoutAReader) {
    int ends[2];
    ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    FileDescriptor reader(ends[0]);
    const FileDescriptor writer(ends[1]);
    LinuxStandardOutput output(ends[1]);
    output.printLine(std::string(2 * PIPE_BUF, 'x'));
    EXPECT_EQ(takeAll(reader), std::string(PIPE_BUF - 1, 'x') + '\n') << "cut";
    // A call that waited would wait for ever: nobody reads.
    for (int lines = 0; lines < 2000; ++lines)
        output.printLine(std::string(700, 'x'));
    EXPECT_GT(takeAll(reader).size(), 700U);
    output.printLine("room again");
    EXPECT_EQ(takeAll(reader), "room again\n");
    EXPECT_EQ(::fcntl(ends[1], F_GETFL) & O_NONBLOCK, 0) << "it is others' too";
    reader.close();
    output.printLine("lost");
    LinuxStandardOutput(ends[1]).printLine("lost");
}

}  // namespace
}  // namespace norvane
