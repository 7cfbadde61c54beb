#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/FileSystemSpace.h"
#include "platform/linux/NvidiaFunctions.h"
#include "platform/MonotonicInstant.h"

namespace norvane {

// What the readers ask the kernel other than through files. The functions may be called from any thread, also
// long after whoever handed them in has gone: they capture by value or share.
struct SystemCalls {
    // Bytes in a page of memory: sysconf(_SC_PAGESIZE). Above 0.
    std::uint64_t pageBytes = 4096;
    // Unit of the processors' counters: sysconf(_SC_CLK_TCK). Above 0.
    std::uint64_t ticksPerSecond = 100;
    // Whose processes are ours: getuid(2).
    std::uint32_t userId = 0;
    // The kind of machine that programs see: uname(2).
    std::string machine;
    // Bytes of memory: sysinfo(2); 0 where it fails.
    std::function<std::uint64_t()> memoryBytes;
    // Seconds since the start, sleep included: clock_gettime(CLOCK_BOOTTIME).
    std::function<double()> bootSeconds;
    // Of the file system that `path` lies on: statvfs(3). May wait for a device or a server, even for ever.
    std::function<std::optional<FileSystemSpace>(const std::string& path)> fileSystemSpace;
    // dlopen(3) of the library of NVIDIA's driver. Empty is as good as a missing library.
    std::function<std::optional<NvidiaFunctions>()> loadNvidiaFunctions;
    // clock_gettime(CLOCK_MONOTONIC).
    std::function<MonotonicInstant()> now;

    // Those of the running kernel.
    static SystemCalls real();
};

}  // namespace norvane
