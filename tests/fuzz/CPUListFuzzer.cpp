#include <algorithm>
#include <functional>

#include "platform/linux/CPUList.h"
#include "Property.h"

namespace norvane {
namespace {

// As the kernel writes them: neighbours as a range.
std::string written(const std::vector<unsigned>& processors) {
    std::string text;
    for (std::size_t begin = 0; begin < processors.size();) {
        std::size_t last = begin;
        while (last + 1 < processors.size() && processors[last + 1] == processors[last] + 1)
            ++last;
        if (!text.empty()) text += ',';
        text += std::to_string(processors[begin]);
        if (last > begin) text += '-' + std::to_string(processors[last]);
        begin = last + 1;
    }
    return text + '\n';
}

}  // namespace

void check(std::string_view text) {
    const auto processors = parseCPUList(text);
    if (!processors) return;
    require(std::is_sorted(processors->begin(), processors->end(), std::less_equal<>()),
            "each processor is there once, in order");
    require(processors->empty() || processors->back() <= 65535, "numbers of processors have a bound");
    require(parseCPUList(written(*processors)) == processors, "the list survives printing");
}

}  // namespace norvane
