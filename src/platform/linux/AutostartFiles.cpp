#include "platform/linux/AutostartFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/AutostartEntry.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr const char* kFolder = "/autostart";
constexpr const char* kFile = "/norvane.desktop";
// It is no entry to anybody, since a session looks at names that end in ".desktop".
constexpr const char* kTemporaryFile = "/.norvane.desktop.XXXXXX";

std::string failure(const char* what, const std::string& path, int error) {
    return repairedUtf8(std::string(what) + ' ' + path + ": " + std::generic_category().message(error));
}

bool isMissing(int error) {
    return error == ENOENT || error == ENOTDIR;
}

// The file's text, empty where it is no file that could be an entry; none where there is no file.
std::optional<std::string> contentsOf(const std::string& path) {
    // Not waiting for the other end of what may be a pipe.
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file) return isMissing(errno) ? std::nullopt : std::optional<std::string>("");
    struct stat status {};
    if (fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return "";
    // One byte more than there may be, so that a file that is too long is noticed.
    std::string text(AutostartFiles::kLargestBytes + 1, '\0');
    std::size_t length = 0;
    while (length < text.size()) {
        const ssize_t got = read(file.get(), text.data() + length, text.size() - length);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return "";
        if (got == 0) break;
        length += static_cast<std::size_t>(got);
    }
    text.resize(length > AutostartFiles::kLargestBytes ? 0 : length);
    return text;
}

bool isExecutable(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

// With all that are above it. 0, or an error number.
int makeFolders(const std::string& path) {
    for (std::size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        const std::string part = path.substr(0, slash);
        const int error = mkdir(part.c_str(), S_IRWXU) == 0 ? 0 : errno;
        if (slash != std::string::npos) continue;
        struct stat status {};
        // Whatever `mkdir` says of a folder that is there: a read-only disk has its own answer.
        return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) ? 0 : error;
    }
}

// Some file systems cannot, and say that the call makes no sense. 0, or an error number.
int flushed(int descriptor) {
    return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOSYS ? 0 : errno;
}

int flushFolder(const std::string& folder) {
    const FileDescriptor directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return directory ? flushed(directory.get()) : errno;
}

// 0, or an error number.
int writeAndFlush(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t length = write(descriptor, text.data(), text.size());
        if (length < 0 && errno == EINTR) continue;
        if (length < 0) return errno;
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return flushed(descriptor);
}

}  // namespace

AutostartFiles::AutostartFiles(AutostartSurroundings surroundings, std::string program)
    : surroundings_(std::move(surroundings)), program_(std::move(program)) {}

std::string AutostartFiles::userFolder() const {
    return surroundings_.configHome + kFolder;
}

bool AutostartFiles::isStarted() const {
    std::optional<std::string> text;
    if (!surroundings_.configHome.empty()) text = contentsOf(userFolder() + kFile);
    for (const std::string& folder : surroundings_.configFolders) {
        if (text) break;
        text = contentsOf(folder + kFolder + kFile);
    }
    return text &&
           AutostartEntry::parse(*text).isStarted(
               surroundings_.desktops, [this](const std::string& program) { return isProgram(program); });
}

bool AutostartFiles::isProgram(const std::string& program) const {
    if (program.front() == '/') return isExecutable(program);
    // Relative to a folder that nobody knows.
    if (program.find('/') != std::string::npos) return false;
    return std::any_of(surroundings_.programFolders.begin(), surroundings_.programFolders.end(),
                       [&](const std::string& folder) { return isExecutable(folder + '/' + program); });
}

std::optional<std::string> AutostartFiles::switchOn() const {
    const auto text = AutostartEntry::textStarting(program_);
    if (!text) return repairedUtf8("No desktop entry can name the program \"" + program_ + '"');
    return replace(*text);
}

std::optional<std::string> AutostartFiles::switchOff() const {
    const bool isThereForAll = std::any_of(
        surroundings_.configFolders.begin(), surroundings_.configFolders.end(),
        [](const std::string& folder) { return contentsOf(folder + kFolder + kFile).has_value(); });
    if (isThereForAll) return replace(AutostartEntry::deletedText());
    if (surroundings_.configHome.empty()) return std::nullopt;
    const std::string target = userFolder() + kFile;
    if (unlink(target.c_str()) == 0) {
        flushFolder(userFolder());
        return std::nullopt;
    }
    if (isMissing(errno)) return std::nullopt;
    return failure("Cannot remove", target, errno);
}

// By a new file beside the target, safe on the disk before it takes the target's place.
std::optional<std::string> AutostartFiles::replace(const std::string& text) const {
    if (surroundings_.configHome.empty()) return "The user has no folder for settings";
    const std::string folder = userFolder();
    if (const int error = makeFolders(folder); error != 0) return failure("Cannot make", folder, error);
    const std::string target = folder + kFile;
    std::string temporary = folder + kTemporaryFile;
    int error = 0;
    {
        const FileDescriptor file(mkostemp(temporary.data(), O_CLOEXEC));
        if (!file) return failure("Cannot write", target, errno);
        error = writeAndFlush(file.get(), text);
    }
    if (error == 0 && rename(temporary.c_str(), target.c_str()) != 0) error = errno;
    if (error != 0) {
        unlink(temporary.c_str());
        return failure("Cannot write", target, error);
    }
    // In place already, which a power cut in this moment might undo: nothing to tell anybody.
    flushFolder(folder);
    return std::nullopt;
}

}  // namespace norvane
