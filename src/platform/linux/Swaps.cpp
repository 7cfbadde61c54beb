#include "platform/linux/Swaps.h"

#include "platform/linux/KernelText.h"
#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

// The kernel writes blanks within a name as "\040", so that a name is one word. A node in /dev that was
// removed and made anew by the device manager carries a mark after its name.
constexpr std::string_view kRemovedMark = "\\040(deleted)";

std::optional<unsigned> zramNumber(std::string_view name, std::string_view type) {
    // A swap file may have any name.
    if (type != "partition") return std::nullopt;
    if (name.size() > kRemovedMark.size() && name.substr(name.size() - kRemovedMark.size()) == kRemovedMark) {
        name.remove_suffix(kRemovedMark.size());
    }
    const std::size_t slash = name.rfind('/');
    if (slash == std::string_view::npos) return std::nullopt;
    return numberAfter("zram", name.substr(slash + 1));
}

}  // namespace

bool parseSwaps(std::string_view text, std::vector<SwapArea>& areas) {
    areas.clear();
    std::string_view head = takeLine(text);
    if (takeWord(head) != "Filename") return false;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view name = takeWord(line);
        const std::string_view type = takeWord(line);
        const auto size = takeNumber(line);
        if (!size) continue;
        const auto used = takeNumber(line);
        if (!used) continue;
        areas.push_back(
            {zramNumber(name, type), saturatedProduct(*size, 1024), saturatedProduct(*used, 1024)});
    }
    return true;
}

}  // namespace norvane
