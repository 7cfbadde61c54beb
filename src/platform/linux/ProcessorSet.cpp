#include "platform/linux/ProcessorSet.h"

#include <algorithm>

#include "platform/linux/KernelFiles.h"

namespace norvane {

const std::vector<ProcessorTicks>* ProcessorSet::fixBy(std::string_view procStat) {
    const std::lock_guard lock(mutex_);
    if (first_.empty()) {
        parseProcessorTicks(procStat, first_);
        const auto byNumber = [](const ProcessorTicks& a, const ProcessorTicks& b) {
            return a.number < b.number;
        };
        const auto sameNumber = [](const ProcessorTicks& a, const ProcessorTicks& b) {
            return a.number == b.number;
        };
        std::stable_sort(first_.begin(), first_.end(), byNumber);
        first_.erase(std::unique(first_.begin(), first_.end(), sameNumber), first_.end());
    }
    return first_.empty() ? nullptr : &first_;
}

const CPUTopology* ProcessorSet::topology() {
    const auto* first = fixBy({});
    if (first == nullptr) {
        const auto text = root_.read("/proc/stat", KernelFiles::kProcStatLimit);
        if (text) first = fixBy(*text);
    }
    if (first == nullptr) return nullptr;
    std::call_once(topologyOnce_, [&] {
        std::vector<unsigned> numbers;
        for (const ProcessorTicks& processor : *first)
            numbers.push_back(processor.number);
        topology_ = readCPUTopology(root_, numbers);
    });
    return &topology_;
}

}  // namespace norvane
