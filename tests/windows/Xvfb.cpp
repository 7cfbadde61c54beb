#include "Xvfb.h"

#include <csignal>
#include <cstdlib>

namespace norvane {

int runOn(const std::string& display, const std::string& command) {
    return std::system(("DISPLAY=" + display + "; export DISPLAY; exec >/dev/null 2>&1; " + command).c_str());
}

Xvfb::Xvfb() {
    const std::string screen = std::to_string(kWidth) + "x" + std::to_string(kHeight) + "x24";
    const std::string options = " -displayfd 1 -nolisten tcp -noreset -screen 0 " + screen;
    // The server tells the display's number once it takes connections; the shell that it was, its process.
    said_ = popen(("echo $$; exec Xvfb" + options + " 2>/dev/null </dev/null").c_str(), "re");
    int number = 0;
    if (said_ != nullptr && std::fscanf(said_, "%d %d", &process_, &number) == 2)
        display_ = ":" + std::to_string(number);
}

void Xvfb::end() {
    // Asked to, it takes its lock and its socket along.
    if (process_ > 0) kill(process_, SIGTERM);
    if (said_ != nullptr) pclose(said_);
    said_ = nullptr;
    process_ = -1;
    display_.clear();
}

}  // namespace norvane
