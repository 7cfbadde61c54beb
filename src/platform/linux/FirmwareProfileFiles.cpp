#include "platform/linux/FirmwareProfileFiles.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace norvane {
namespace {

// Its texts are single words.
constexpr std::size_t kLongestText = 256;

// The files that count, in an order in which the first alone decides where it can be read.
std::vector<std::string> candidates(const RootFolder& root) {
    std::vector<std::string> paths{"/sys/firmware/acpi/platform_profile"};
    const std::string folder = "/sys/class/platform-profile/";
    for (const std::string& name : root.names(folder))
        paths.push_back((folder + name).append("/profile"));
    return paths;
}

}  // namespace

FirmwareProfileFiles::FirmwareProfileFiles(RootFolder root) : root_(std::move(root)) {}

bool FirmwareProfileFiles::isThere(const RootFolder& root) {
    const auto paths = candidates(root);
    return std::any_of(paths.begin(), paths.end(),
                       [&](const std::string& path) { return static_cast<bool>(root.open(path.c_str())); });
}

FirmwareProfile FirmwareProfileFiles::read() {
    bool hasFile = false;
    std::optional<FirmwareProfile> answer;
    std::vector<char> text;
    const auto paths = candidates(root_);
    for (const std::string& path : paths) {
        const FileDescriptor file = root_.open(path.c_str());
        if (!file) continue;
        hasFile = true;
        const auto length = root_.readAll(file, path, text, kLongestText);
        if (!length) continue;
        // Any device that saves power counts, where there is no file for all of them.
        if (answer != FirmwareProfile::lowPower) answer = firmwareTelling({text.data(), *length});
        if (path == paths.front()) break;
    }
    if (!hasFile) return FirmwareProfile::absent;
    lastAnswer_ = answer.value_or(lastAnswer_);
    return lastAnswer_;
}

}  // namespace norvane
