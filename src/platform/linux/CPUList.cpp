#include "platform/linux/CPUList.h"

#include <algorithm>

#include "platform/linux/KernelText.h"

namespace norvane {

std::optional<std::vector<unsigned>> parseCPUList(std::string_view text) {
    std::vector<unsigned> processors;
    text = trimmed(text);
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(','), text.size());
        const std::string_view range = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        const std::size_t dash = range.find('-');
        const auto first = numberAfter("", range.substr(0, dash));
        const auto last = dash == std::string_view::npos ? first : numberAfter("", range.substr(dash + 1));
        // The kernel writes them in order; without that, a hostile list could repeat a range without end.
        if (!first || !last || *first > *last) return std::nullopt;
        if (!processors.empty() && *first <= processors.back()) return std::nullopt;
        for (unsigned number = *first; number <= *last; ++number)
            processors.push_back(number);
    }
    return processors;
}

}  // namespace norvane
