#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

// Shows the median of each benchmark's repetitions and keeps all of them, to be compared when all have run.
class MedianReporter final : public benchmark::ConsoleReporter {
 public:
    MedianReporter() : ConsoleReporter(OO_None) {}

    void ReportRuns(const std::vector<Run>& runs) override;

    // Nanoseconds for one iteration: the median of the repetitions; none where it did not run.
    std::optional<double> medianTime(const std::string& benchmark) const;
    // The largest that a counter was in any repetition; none where it did not run or has no such counter.
    std::optional<double> largestCount(const std::string& benchmark, const std::string& counter) const;

 private:
    std::map<std::string, std::vector<double>> times_;
    std::map<std::string, std::map<std::string, double>> counts_;
};

}  // namespace norvane
