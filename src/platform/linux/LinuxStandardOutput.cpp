#include "platform/linux/LinuxStandardOutput.h"

#include <poll.h>
#include <unistd.h>

#include <climits>
#include <string>

namespace norvane {

void LinuxStandardOutput::printLine(std::string_view line) {
    // Up to PIPE_BUF bytes go into a pipe whole and at once where poll(2) says that there is room; what is
    // longer is cut. A file or a terminal is always ready.
    std::string text(line.substr(0, PIPE_BUF - 1));
    text += '\n';
    pollfd ready{.fd = descriptor_, .events = POLLOUT, .revents = 0};
    if (::poll(&ready, 1, 0) != 1 || (ready.revents & POLLOUT) == 0) return;
    // SIGPIPE is ignored in the program; what cannot be written is lost.
    [[maybe_unused]] const auto written = ::write(descriptor_, text.data(), text.size());
}

}  // namespace norvane
