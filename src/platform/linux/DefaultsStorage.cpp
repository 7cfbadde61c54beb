#include "platform/linux/DefaultsStorage.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/PathParts.h"

namespace norvane {
namespace {

// A temporary file is called ".defaults.ini.XXXXXX.tmp", the Xs being anything.
constexpr std::string_view kTemporaryVariable = ".XXXXXX";
constexpr std::string_view kTemporarySuffix = ".tmp";
constexpr const char* kAsideSuffix = ".bad";

// As many links in a row as the kernel follows.
constexpr int kMostLinksFollowed = 40;

// Keeps other processes from writing a file of this directory while they ask the same way. It goes with the
// process, however that ends. Some network file systems have no such locks: then it goes without.
class WriteLock {
 public:
    explicit WriteLock(const std::string& directory)
        : directory_(open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        // Somebody who has been stopped in the middle of a write must not hold up everybody else for ever.
        constexpr timespec kPause{0, 5'000'000};
        constexpr int kMostTries = 200;
        for (int tries = 0; directory_ && !isHeld_ && tries < kMostTries; ++tries) {
            isHeld_ = flock(directory_.get(), LOCK_EX | LOCK_NB) == 0;
            if (isHeld_ || (errno != EWOULDBLOCK && errno != EINTR)) break;
            nanosleep(&kPause, nullptr);
        }
    }

    bool isHeld() const { return isHeld_; }
    int directory() const { return directory_.get(); }

 private:
    FileDescriptor directory_;
    bool isHeld_ = false;
};

DefaultsStorage::State stateAfter(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
            return DefaultsStorage::State::missing;
        case EACCES:
        case EPERM:
        case EISDIR:
        case ELOOP:
        case ENXIO:
        case EIO:
            return DefaultsStorage::State::unusable;
        default:
            return DefaultsStorage::State::unknown;
    }
}

std::optional<std::string> linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length <= 0 || static_cast<std::size_t>(length) == target.size()) return std::nullopt;
    std::string text(target.data(), static_cast<std::size_t>(length));
    return text.front() == '/' ? text : directoryPart(path) + '/' + text;
}

bool makeDirectories(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const bool isLast = slash == std::string::npos;
        const std::string part = path.substr(0, slash);
        if (mkdir(part.c_str(), S_IRWXU) != 0 && isLast) {
            struct stat status {};
            return stat(part.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        }
        if (isLast) return true;
    }
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t length = write(descriptor, text.data(), text.size());
        if (length < 0 && errno == EINTR) continue;
        if (length <= 0) return false;
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return true;
}

// Some file systems cannot, and say that the call makes no sense.
bool flush(int descriptor) {
    return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS;
}

// A new file beside the target, with the text, safe on the disk. Removes itself unless it was moved into
// place.
class TemporaryFile {
 public:
    TemporaryFile(const std::string& target, std::string_view text)
        : path_(directoryPart(target) + "/." + namePart(target) + std::string(kTemporaryVariable) +
                std::string(kTemporarySuffix)) {
        // It has mode 0600.
        const FileDescriptor file(
            mkostemps(path_.data(), static_cast<int>(kTemporarySuffix.size()), O_CLOEXEC));
        isThere_ = static_cast<bool>(file);
        isComplete_ = isThere_ && writeAll(file.get(), text) && flush(file.get());
    }
    ~TemporaryFile() {
        if (isThere_) unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    bool isComplete() const { return isComplete_; }
    bool moveTo(const std::string& target) {
        if (rename(path_.c_str(), target.c_str()) != 0) return false;
        isThere_ = false;
        return true;
    }

 private:
    std::string path_;
    bool isThere_ = false;
    bool isComplete_ = false;
};

// Those that a crash left between writing and moving. Only for who holds the lock: nobody is writing now.
void removeStaleTemporaries(const std::string& target) {
    const std::string directory = directoryPart(target);
    const std::string prefix = "." + namePart(target) + ".";
    const std::size_t length = prefix.size() - 1 + kTemporaryVariable.size() + kTemporarySuffix.size();
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(opendir(directory.c_str()), closedir);
    if (!listing) return;
    while (const dirent* const entry = readdir(listing.get())) {
        const std::string_view name = entry->d_name;
        if (name.size() != length || !name.starts_with(prefix) || !name.ends_with(kTemporarySuffix)) continue;
        unlink((directory + '/' + std::string(name)).c_str());
    }
}

}  // namespace

DefaultsStorage::Reading DefaultsStorage::read() const {
    // Not waiting for the other end of what may be a pipe.
    const FileDescriptor file(open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file) return {stateAfter(errno), {}};
    struct stat status {};
    if (fstat(file.get(), &status) != 0) return {State::unknown, {}};
    if (!S_ISREG(status.st_mode) || status.st_size > static_cast<off_t>(kLargestBytes)) {
        return {State::unusable, {}};
    }
    // It may grow while it is read, so there is always room for one byte more.
    std::string text(static_cast<std::size_t>(status.st_size) + 1, '\0');
    std::size_t length = 0;
    for (;;) {
        const ssize_t got = ::read(file.get(), text.data() + length, text.size() - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return {stateAfter(errno), {}};
        if (got == 0) break;
        length += static_cast<std::size_t>(got);
        if (length > kLargestBytes) return {State::unusable, {}};
        if (length == text.size()) text.resize(2 * length);
    }
    text.resize(length);
    return {State::readable, std::move(text)};
}

std::optional<std::string> DefaultsStorage::apply(const DefaultsChanges& changes) {
    if (path_.empty()) return std::nullopt;
    const std::string target = pathAndLinkTargets().back();
    const std::string directory = directoryPart(target);
    if (!makeDirectories(directory)) return std::nullopt;
    const WriteLock lock(directory);

    const Reading before = read();
    if (before.state == State::unknown) return std::nullopt;
    std::string text = rewriteDefaults(before.text, changes);
    if (text == before.text && before.state != State::unusable) return text;
    if (text.size() > kLargestBytes) return std::nullopt;

    if (lock.isHeld()) removeStaleTemporaries(target);
    TemporaryFile temporary(target, text);
    if (!temporary.isComplete()) return std::nullopt;
    if (before.state == State::unusable) {
        const std::string aside = target + kAsideSuffix;
        if (rename(target.c_str(), aside.c_str()) != 0) return std::nullopt;
    }
    if (!temporary.moveTo(target)) return std::nullopt;
    if (lock.directory() >= 0) flush(lock.directory());
    return text;
}

std::vector<std::string> DefaultsStorage::pathAndLinkTargets() const {
    std::vector<std::string> paths{path_};
    for (int links = 0; links < kMostLinksFollowed; ++links) {
        auto target = linkTarget(paths.back());
        if (!target) return paths;
        paths.push_back(std::move(*target));
    }
    return {path_};
}

}  // namespace norvane
