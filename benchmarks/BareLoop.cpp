#include "BareLoop.h"

#include <fcntl.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/RootFolder.h"
#include "platform/linux/Swaps.h"

namespace norvane {
namespace {

// Larger than any of the files on all but the largest machines.
constexpr std::size_t kBufferBytes = std::size_t{256} * 1024;

// The zram devices that are swapped to.
std::vector<unsigned> zramInUse() {
    std::vector<SwapArea> areas;
    const auto text = RootFolder("").read("/proc/swaps");
    if (!text || !parseSwaps(*text, areas)) return {};
    std::vector<unsigned> numbers;
    for (const SwapArea& area : areas) {
        if (area.zram) numbers.push_back(*area.zram);
    }
    return numbers;
}

}  // namespace

BareLoop::BareLoop(Half half) : buffer_(kBufferBytes) {
    for (const char* path : {"/proc/stat", "/proc/meminfo", "/proc/pressure/memory", "/proc/swaps"})
        add(path);
    if (half == Half::full) {
        for (const char* path : {"/proc/vmstat", "/proc/uptime"})
            add(path);
        add("/proc/diskstats", 3);
        add("/proc/self/mountinfo", 30);
    }
    for (const unsigned number : zramInUse()) {
        const std::string folder = "/sys/block/zram" + std::to_string(number);
        add((folder + "/mm_stat").c_str());
        if (half == Half::full) add((folder + "/stat").c_str());
    }
}

void BareLoop::add(const char* path, std::uint64_t everyNth) {
    FileDescriptor file(::open(path, O_RDONLY | O_CLOEXEC));
    if (file) files_.push_back({std::move(file), everyNth});
}

void BareLoop::read() {
    ++count_;
    for (const File& file : files_) {
        if (count_ % file.everyNth != 0) continue;
        off_t offset = 0;
        for (;;) {
            const ssize_t more = ::pread(file.descriptor.get(), buffer_.data(), buffer_.size(), offset);
            if (more <= 0) break;
            offset += more;
        }
    }
}

}  // namespace norvane
