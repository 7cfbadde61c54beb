#include "platform/linux/RootFolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>

#include "platform/linux/FileObserver.h"

namespace norvane {

struct RootFolder::State {
    std::string prefix;
    std::shared_ptr<FileObserver> observer;
    Links links = Links::kernelFollows;
    FileDescriptor root;  // the prefix, where there is one
};

namespace {

// As many as the kernel follows in one path (path_resolution(7)).
constexpr int kMostLinks = 40;
constexpr std::size_t kFirstBuffer = 4096;

std::optional<std::string> linkText(int folder, const std::string& path) {
    std::array<char, PATH_MAX> text{};
    const ssize_t length = ::readlinkat(folder, path.c_str(), text.data(), text.size());
    // A link as long as the buffer may have been cut.
    if (length <= 0 || static_cast<std::size_t>(length) == text.size()) return std::nullopt;
    return std::string(text.data(), static_cast<std::size_t>(length));
}

// Puts the components of `path` on `waiting`, the first one on top.
void pushComponents(std::string_view path, std::vector<std::string>& waiting) {
    const std::size_t base = waiting.size();
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0) waiting.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    std::reverse(waiting.begin() + static_cast<std::ptrdiff_t>(base), waiting.end());
}

// `path` relative to `root`, free of links and of "..", as if `root` were the root of all. The last component
// stays as it is when it is a link that is not to be followed.
std::optional<std::string> resolveBelow(int root, std::string_view path, bool followLast) {
    std::vector<std::string> waiting;
    std::vector<std::string> resolved;
    pushComponents(path, waiting);
    const auto joined = [&resolved](const std::string& last) {
        std::string text;
        for (const std::string& component : resolved)
            text += component + '/';
        return text + last;
    };
    int links = 0;
    while (!waiting.empty()) {
        const std::string component = std::move(waiting.back());
        waiting.pop_back();
        if (component == ".") continue;
        if (component == "..") {
            if (!resolved.empty()) resolved.pop_back();
            continue;
        }
        if (!waiting.empty() || followLast) {
            if (const auto link = linkText(root, joined(component))) {
                if (++links > kMostLinks) {
                    errno = ELOOP;
                    return std::nullopt;
                }
                if (link->front() == '/') resolved.clear();
                pushComponents(*link, waiting);
                continue;
            }
        }
        resolved.push_back(component);
    }
    return resolved.empty() ? "." : joined("").substr(0, joined("").size() - 1);
}

}  // namespace

RootFolder::RootFolder(std::string prefix, std::shared_ptr<FileObserver> observer, Links links) {
    auto state = std::make_shared<State>();
    if (!prefix.empty()) {
        state->root = FileDescriptor(::open(prefix.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    }
    state->prefix = std::move(prefix);
    state->observer = std::move(observer);
    state->links = links;
    state_ = std::move(state);
}

FileDescriptor RootFolder::openAs(const char* path, int flags) const {
    if (state_->observer) state_->observer->willOpen(path);
    // Not blocking, since opening a pipe that nobody writes would hang.
    flags |= O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    if (state_->prefix.empty()) return FileDescriptor(::open(path, flags));
    if (!state_->root) {
        errno = ENOENT;
        return {};
    }
    if (state_->links == Links::kernelFollows) {
        open_how how{};
        how.flags = static_cast<std::uint64_t>(flags);
        how.resolve = RESOLVE_IN_ROOT;
        const long number = ::syscall(SYS_openat2, state_->root.get(), path, &how, sizeof how);
        if (number >= 0) return FileDescriptor(static_cast<int>(number));
        // Before Linux 5.6 the call is missing, and sandboxes that are older than it forbid it.
        if (errno != ENOSYS && errno != EPERM) return {};
    }
    const auto resolved = resolveBelow(state_->root.get(), path, true);
    if (!resolved) return {};
    return FileDescriptor(::openat(state_->root.get(), resolved->c_str(), flags | O_NOFOLLOW));
}

FileDescriptor RootFolder::open(const char* path) const {
    return openAs(path, O_RDONLY);
}

std::optional<std::size_t> RootFolder::readAll(const FileDescriptor& file, std::string_view path,
                                               std::vector<char>& buffer, std::size_t limit) const {
    return readInto(buffer, file, path, limit);
}

template <typename Buffer>
std::optional<std::size_t> RootFolder::readInto(Buffer& buffer, const FileDescriptor& file,
                                                std::string_view path, std::size_t limit) const {
    if (state_->observer) state_->observer->willRead(path);
    std::size_t length = 0;
    for (;;) {
        if (length == buffer.size()) {
            if (length > limit) {
                errno = EFBIG;
                return std::nullopt;
            }
            // One byte more than allowed, so that a text of just the limit is told from a longer one.
            buffer.resize(std::min(std::max(length * 2, kFirstBuffer), limit + 1));
        }
        const ssize_t more =
            ::pread(file.get(), buffer.data() + length, buffer.size() - length, static_cast<off_t>(length));
        if (more == 0) return length;
        if (more < 0 && errno == EINTR) continue;
        if (more < 0) return std::nullopt;
        length += static_cast<std::size_t>(more);
    }
}

std::optional<std::string> RootFolder::read(const std::string& path, std::size_t limit) const {
    const FileDescriptor file = open(path.c_str());
    if (!file) return std::nullopt;
    std::string text;
    const auto length = readInto(text, file, path, limit);
    if (!length) return std::nullopt;
    text.resize(*length);
    return text;
}

std::vector<std::string> RootFolder::names(const std::string& path) const {
    std::vector<std::string> found;
    FileDescriptor folder = openAs(path.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder) return found;
    DIR* const entries = ::fdopendir(folder.get());
    if (entries == nullptr) return found;
    (void)folder.release();
    while (const dirent* entry = ::readdir(entries)) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..") found.emplace_back(name);
    }
    ::closedir(entries);
    std::sort(found.begin(), found.end());
    return found;
}

std::optional<std::string> RootFolder::readLink(const std::string& path) const {
    if (state_->prefix.empty()) return linkText(AT_FDCWD, path);
    if (!state_->root) return std::nullopt;
    const auto resolved = resolveBelow(state_->root.get(), path, false);
    if (!resolved) return std::nullopt;
    return linkText(state_->root.get(), *resolved);
}

std::optional<std::uint32_t> RootFolder::owner(const std::string& path) const {
    int folder = AT_FDCWD;
    std::optional<std::string> resolved = path;
    if (!state_->prefix.empty()) {
        folder = state_->root.get();
        resolved = state_->root ? resolveBelow(folder, path, false) : std::nullopt;
    }
    struct stat status {};
    if (!resolved || ::fstatat(folder, resolved->c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        return std::nullopt;
    }
    return status.st_uid;
}

}  // namespace norvane
