#include "SampleReporter.h"

#include <algorithm>
#include <cstdio>

namespace norvane {

void SampleReporter::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        const std::string& name = run.run_name.function_name;
        if (run.error_occurred) std::fprintf(stderr, "%s: %s\n", name.c_str(), run.error_message.c_str());
        if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
        times_[name].push_back(run.GetAdjustedRealTime() * 1e6 /
                               benchmark::GetTimeUnitMultiplier(run.time_unit));
        for (const auto& [counter, value] : run.counters) {
            double& largest = counts_[name].try_emplace(counter, value.value).first->second;
            largest = std::max(largest, value.value);
        }
    }
}

std::vector<double> SampleReporter::times(const std::string& benchmark) const {
    const auto found = times_.find(benchmark);
    return found == times_.end() ? std::vector<double>() : found->second;
}

std::optional<double> SampleReporter::largestCount(const std::string& benchmark,
                                                   const std::string& counter) const {
    const auto counters = counts_.find(benchmark);
    if (counters == counts_.end()) return std::nullopt;
    const auto found = counters->second.find(counter);
    return found == counters->second.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace norvane
