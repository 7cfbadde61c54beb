#include "MedianReporter.h"

#include <algorithm>

namespace norvane {

void MedianReporter::ReportRuns(const std::vector<Run>& runs) {
    std::vector<Run> shown;
    for (const Run& run : runs) {
        const std::string& name = run.run_name.function_name;
        if (run.error_occurred || run.aggregate_name == "median") shown.push_back(run);
        if (run.error_occurred || run.run_type != Run::RT_Iteration) continue;
        times_[name].push_back(run.GetAdjustedRealTime() * 1e9 /
                               benchmark::GetTimeUnitMultiplier(run.time_unit));
        for (const auto& [counter, value] : run.counters) {
            double& largest = counts_[name].try_emplace(counter, value.value).first->second;
            largest = std::max(largest, value.value);
        }
    }
    if (!shown.empty()) ConsoleReporter::ReportRuns(shown);
}

std::optional<double> MedianReporter::medianTime(const std::string& benchmark) const {
    const auto found = times_.find(benchmark);
    if (found == times_.end()) return std::nullopt;
    std::vector<double> times = found->second;
    std::sort(times.begin(), times.end());
    return (times[(times.size() - 1) / 2] + times[times.size() / 2]) / 2;
}

std::optional<double> MedianReporter::largestCount(const std::string& benchmark,
                                                   const std::string& counter) const {
    const auto counters = counts_.find(benchmark);
    if (counters == counts_.end()) return std::nullopt;
    const auto found = counters->second.find(counter);
    return found == counters->second.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace norvane
