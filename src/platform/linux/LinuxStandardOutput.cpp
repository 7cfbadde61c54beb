#include "platform/linux/LinuxStandardOutput.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <climits>
#include <string>

namespace norvane {

LinuxStandardOutput::LinuxStandardOutput(int descriptor) : descriptor_(descriptor) {
    struct stat kind {};
    if (::fstat(descriptor, &kind) != 0 || !(S_ISFIFO(kind.st_mode) || S_ISCHR(kind.st_mode))) return;
    // Where that is not allowed, or nobody reads, it stays with the descriptor that we were given.
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    own_ = FileDescriptor(::open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

void LinuxStandardOutput::printLine(std::string_view line) {
    // Up to PIPE_BUF bytes go into a pipe whole and at once where poll(2) says that there is room; what is
    // longer is cut. A file is always ready.
    std::string text(line.substr(0, PIPE_BUF - 1));
    text += '\n';
    const std::lock_guard lock(mutex_);
    pollfd ready{.fd = own_ ? own_.get() : descriptor_, .events = POLLOUT, .revents = 0};
    // A pipe without a reader has room, and an error.
    if (::poll(&ready, 1, 0) != 1 || ready.revents != POLLOUT) return;
    // SIGPIPE is ignored in the program, should the reader go just now; what cannot be written is lost.
    [[maybe_unused]] const auto written = ::write(ready.fd, text.data(), text.size());
}

}  // namespace norvane
