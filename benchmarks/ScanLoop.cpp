#include "ScanLoop.h"

#include <fcntl.h>
#include <unistd.h>

#include <map>

#include "EveryByte.h"

namespace norvane {
namespace {

constexpr std::size_t kBufferBytes = std::size_t{1} << 20;

}  // namespace

ScanLoop::ScanLoop(const std::string& root, const std::vector<std::vector<std::string>>& readsOfTicks)
    : buffer_(kBufferBytes) {
    std::map<std::string, std::size_t> known;
    for (const auto& reads : readsOfTicks) {
        auto& tick = ticks_.emplace_back();
        for (const std::string& path : reads) {
            const auto [place, isNew] = known.try_emplace(path, files_.size());
            if (isNew) files_.emplace_back(::open((root + path).c_str(), O_RDONLY | O_CLOEXEC));
            if (files_[place->second]) tick.push_back(place->second);
        }
    }
}

std::uint64_t ScanLoop::readTick() {
    std::uint64_t words = 0;
    for (const std::size_t index : ticks_[next_]) {
        off_t offset = 0;
        for (;;) {
            const ssize_t more = ::pread(files_[index].get(), buffer_.data(), buffer_.size(), offset);
            if (more <= 0) break;
            words += scanEveryByte({buffer_.data(), static_cast<std::size_t>(more)});
            offset += more;
        }
    }
    next_ = (next_ + 1) % ticks_.size();
    return words;
}

std::size_t ScanLoop::reads() const {
    std::size_t sum = 0;
    for (const auto& tick : ticks_)
        sum += tick.size();
    return sum;
}

}  // namespace norvane
