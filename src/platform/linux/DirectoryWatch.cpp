#include "platform/linux/DirectoryWatch.h"

#include <sys/inotify.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <utility>

#include "platform/linux/PathParts.h"

namespace norvane {
namespace {

constexpr std::uint32_t kEvents =
    IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE | IN_ATTRIB | IN_ONLYDIR;

}  // namespace

DirectoryWatch::DirectoryWatch() : descriptor_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

void DirectoryWatch::follow(const std::vector<std::string>& paths) {
    if (!descriptor_) return;
    std::map<int, std::set<std::string>> names;
    for (std::string path : paths) {
        while (!path.empty()) {
            const std::string directory = directoryPart(path);
            const int watch = inotify_add_watch(descriptor_.get(), directory.c_str(), kEvents);
            if (watch >= 0) {
                names[watch].insert(namePart(path));
                break;
            }
            // A missing directory will come in the one above it.
            if (errno != ENOENT || directory == "/" || directory == ".") break;
            path = directory;
        }
    }
    for (const auto& [watch, unused] : names_) {
        if (!names.contains(watch)) inotify_rm_watch(descriptor_.get(), watch);
    }
    names_ = std::move(names);
}

bool DirectoryWatch::takeChange() {
    bool isOurs = false;
    alignas(inotify_event) std::array<char, 4096> events;
    for (;;) {
        const ssize_t length = read(descriptor_.get(), events.data(), events.size());
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return isOurs;
        for (std::size_t at = 0; at < static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, events.data() + at, sizeof event);
            const char* const name = events.data() + at + sizeof event;
            const auto names = names_.find(event.wd);
            const bool isWatched = names != names_.end();
            // The kernel lost some, or a directory went away with its watch.
            const bool mayBeAnything =
                (event.mask & (IN_Q_OVERFLOW | IN_IGNORED)) != 0 && (event.wd < 0 || isWatched);
            const bool isNamed = isWatched && event.len > 0 && names->second.contains(name);
            if (mayBeAnything || isNamed) isOurs = true;
            at += sizeof event + event.len;
        }
    }
}

}  // namespace norvane
