#include "platform/linux/DesktopMountOptions.h"

#include <algorithm>

#include "platform/linux/EscapedText.h"
#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

DesktopMountOptions parseOptions(std::string_view text) {
    DesktopMountOptions options;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::string_view option = text.substr(0, end);
        if (option == "x-gvfs-hide") options.hide = true;
        if (option == "x-gvfs-show") options.show = true;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return options;
}

}  // namespace

std::unordered_map<std::string, DesktopMountOptions> parseUtab(std::string_view text) {
    std::unordered_map<std::string, DesktopMountOptions> byPoint;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        std::string point;
        DesktopMountOptions options;
        for (std::string_view word = takeWord(line); !word.empty(); word = takeWord(line)) {
            constexpr std::string_view kTarget = "TARGET=";
            constexpr std::string_view kOptions = "OPTS=";
            if (word.starts_with(kTarget)) point = decodedOctal(word.substr(kTarget.size()));
            if (word.starts_with(kOptions))
                options = parseOptions(decodedOctal(word.substr(kOptions.size())));
        }
        if (!point.empty()) byPoint.insert_or_assign(std::move(point), options);
    }
    return byPoint;
}

}  // namespace norvane
