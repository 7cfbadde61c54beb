#include "platform/linux/QueueThread.h"

#include <pthread.h>
#include <signal.h>
#include <sys/resource.h>
#include <exception>
#include <string>
#include <utility>

namespace norvane {
namespace {

constexpr std::size_t kLongestName = 15;
constexpr int kUtilityNiceness = 2;

void lowerPriority() {
    // Linux keeps a nice value for each thread; 0 stands for the calling one.
    setpriority(PRIO_PROCESS, 0, getpriority(PRIO_PROCESS, 0) + kUtilityNiceness);
}

}  // namespace

std::thread startQueueThread(std::string_view name, ThreadPriority priority, std::function<void()> body) {
    // The new thread inherits the mask, so there is no moment in which it could take one of these signals.
    sigset_t ends;
    sigset_t before;
    sigemptyset(&ends);
    sigaddset(&ends, SIGINT);
    sigaddset(&ends, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &ends, &before);
    std::thread thread;
    try {
        thread = std::thread(
            [priority, label = std::string(name.substr(0, kLongestName)), work = std::move(body)]() mutable {
                pthread_setname_np(pthread_self(), label.c_str());
                if (priority == ThreadPriority::utility) lowerPriority();
                std::exchange(work, nullptr)();
            });
    } catch (const std::exception&) {
        // No memory, or as many threads as this user may have.
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return thread;
}

}  // namespace norvane
