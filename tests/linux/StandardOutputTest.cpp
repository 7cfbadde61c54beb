#include <gtest/gtest.h>

#include <fcntl.h>
#include <limits.h>
#include <poll.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>
#include <string>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxStandardOutput.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

struct Ends {
    FileDescriptor read;
    FileDescriptor write;
};

Ends pipeEnds() {
    int ends[2];
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// Without ends where the machine has no pseudo-terminals.
Ends terminalEnds() {
    FileDescriptor controller(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!controller || ::grantpt(controller.get()) != 0 || ::unlockpt(controller.get()) != 0) return {};
    const char* const name = ::ptsname(controller.get());
    if (name == nullptr) return {};
    return {std::move(controller), FileDescriptor(::open(name, O_WRONLY | O_NOCTTY | O_CLOEXEC))};
}

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

TEST(StandardOutput, PrintsLines) {
    const Ends pipe = pipeEnds();
    LinuxStandardOutput output(pipe.write.get());
    output.printLine("one");
    output.printLine("");
    output.printLine("t\xC3\xA4o");
    EXPECT_EQ(takeAll(pipe.read), "one\n\nt\xC3\xA4o\n");
    output.printLine(std::string(2 * PIPE_BUF, 'x'));
    EXPECT_EQ(takeAll(pipe.read), std::string(PIPE_BUF - 1, 'x') + '\n') << "cut";
}

TEST(StandardOutput, AppendsToAFileWhatOthersWriteThereToo) {
    const TemporaryFolder folder;
    folder.write("/log", "");
    const FileDescriptor file(::open((folder.path() + "/log").c_str(), O_WRONLY | O_CLOEXEC));
    LinuxStandardOutput output(file.get());
    output.printLine("ours");
    ASSERT_EQ(::write(file.get(), "theirs\n", 7), 7);
    output.printLine("ours again");
    EXPECT_EQ(folder.root().read("/log"), "ours\ntheirs\nours again\n");
}

// A call that waited would wait for ever: nobody reads.
void expectNoWaiting(const Ends& channel) {
    LinuxStandardOutput output(channel.write.get());
    for (int lines = 0; lines < 2000; ++lines)
        output.printLine(std::string(700, 'x'));
    EXPECT_GT(takeAll(channel.read).size(), 700U);
    output.printLine("room again");
    EXPECT_EQ(takeAll(channel.read).substr(0, 10), "room again");
    EXPECT_EQ(::fcntl(channel.write.get(), F_GETFL) & O_NONBLOCK, 0) << "it is others' too";
}

TEST(StandardOutput, WaitsForNobodyWhoDoesNotRead) {
    expectNoWaiting(pipeEnds());
    int sockets[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets), 0);
    expectNoWaiting({FileDescriptor(sockets[0]), FileDescriptor(sockets[1])});
    const Ends terminal = terminalEnds();
    if (!terminal.write) GTEST_SKIP() << "no pseudo-terminals here";
    expectNoWaiting(terminal);
}

TEST(StandardOutput, LivesOnWithoutAReader) {
    Ends pipe = pipeEnds();
    LinuxStandardOutput early(pipe.write.get());
    pipe.read.close();
    early.printLine("lost");
    LinuxStandardOutput late(pipe.write.get());
    late.printLine("lost");
    LinuxStandardOutput none(-1);
    none.printLine("lost");
}

}  // namespace
}  // namespace norvane
