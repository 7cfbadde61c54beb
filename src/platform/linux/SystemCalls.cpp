#include "platform/linux/SystemCalls.h"

#include <sys/statvfs.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <chrono>

#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

std::chrono::nanoseconds readClock(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::uint64_t configured(int name, std::uint64_t otherwise) {
    const long value = ::sysconf(name);
    return value > 0 ? static_cast<std::uint64_t>(value) : otherwise;
}

}  // namespace

SystemCalls SystemCalls::real() {
    SystemCalls calls;
    calls.pageBytes = configured(_SC_PAGESIZE, calls.pageBytes);
    calls.ticksPerSecond = configured(_SC_CLK_TCK, calls.ticksPerSecond);
    calls.userId = ::getuid();
    utsname names{};
    if (::uname(&names) == 0) calls.machine = names.machine;
    calls.memoryBytes = [] {
        struct sysinfo info {};
        if (::sysinfo(&info) != 0) return std::uint64_t{0};
        return saturatedProduct(info.totalram, info.mem_unit);
    };
    calls.bootSeconds = [] { return std::chrono::duration<double>(readClock(CLOCK_BOOTTIME)).count(); };
    calls.fileSystemSpace = [](const std::string& path) -> std::optional<FileSystemSpace> {
        struct statvfs space {};
        if (::statvfs(path.c_str(), &space) != 0) return std::nullopt;
        // Counted in fragments; a block is merely what reads well at once. And what root keeps for itself is
        // of no use to a user.
        return FileSystemSpace{saturatedProduct(space.f_blocks, space.f_frsize),
                               saturatedProduct(space.f_bavail, space.f_frsize)};
    };
    calls.loadNvidiaFunctions = NvidiaFunctions::load;
    calls.now = [] { return MonotonicInstant(readClock(CLOCK_MONOTONIC)); };
    return calls;
}

}  // namespace norvane
