#pragma once

#include <optional>
#include <string>
#include <vector>

namespace norvane {

// All that was measured, as one table: the median of each figure with its spread, beside the least that the
// same could cost, measured in the same run, and beside its bound.
class FigureTable {
 public:
    // What does the least: a bare loop, a bare window.
    struct Beside {
        std::string what;
        std::vector<double> samples;
    };

    struct Row {
        std::string what;
        std::vector<double> samples;
        std::string unit;
        std::optional<Beside> beside = std::nullopt;
        // The median may not be more than that.
        std::optional<double> bound = std::nullopt;
        // The median may not be more than so many times what it is beside.
        std::optional<double> ratioBound = std::nullopt;
    };

    // A figure without samples was not measured, which is a failure.
    void add(Row row);
    void fail(const std::string& what);
    // Whether everything was measured and all bounds were kept.
    bool isGood() const { return isGood_; }
    // In Markdown, on the standard output.
    void print() const;

    // None of nothing.
    static std::optional<double> median(std::vector<double> samples);

 private:
    std::vector<std::vector<std::string>> lines_;
    bool isGood_ = true;
};

}  // namespace norvane
