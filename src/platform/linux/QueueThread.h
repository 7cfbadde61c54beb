#pragma once

#include <functional>
#include <string_view>
#include <thread>

namespace norvane {

enum class ThreadPriority {
    normal,
    // Gives way a little to what the user is waiting for.
    utility,
};

// Starts a thread under this name, of which the system keeps 15 bytes. It leaves SIGINT and SIGTERM to the
// main thread. Never throws: where no thread can be had, the returned one is not joinable.
std::thread startQueueThread(std::string_view name, ThreadPriority priority, std::function<void()> body);

}  // namespace norvane
