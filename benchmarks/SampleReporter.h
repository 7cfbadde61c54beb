#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace norvane {

// Keeps the times of all repetitions, to be compared when all have run.
class SampleReporter final : public benchmark::BenchmarkReporter {
 public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override;

    // Microseconds for one iteration, of each repetition; empty where it did not run.
    std::vector<double> times(const std::string& benchmark) const;
    // The largest that a counter was in any repetition; none where it did not run or has no such counter.
    std::optional<double> largestCount(const std::string& benchmark, const std::string& counter) const;

 private:
    std::map<std::string, std::vector<double>> times_;
    std::map<std::string, std::map<std::string, double>> counts_;
};

}  // namespace norvane
