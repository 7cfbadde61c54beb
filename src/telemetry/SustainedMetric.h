#pragma once

#include <cstddef>
#include <numeric>
#include <vector>

namespace norvane {

// A short moving mean, against values that spike between samples. It allocates once.
template <typename Sample>
class SustainedMetric {
 public:
    explicit SustainedMetric(std::size_t maxSamples) : maxSamples_(maxSamples) {
        window_.reserve(maxSamples + 1);
    }

    // Of more than `maxSamples` samples the oldest goes.
    void append(Sample sample) {
        const bool wasFull = window_.size() >= maxSamples_;
        window_.push_back(sample);
        if (wasFull) window_.erase(window_.begin());
    }

    // Undefined (not a number) for an empty window.
    Sample mean() const {
        return std::accumulate(window_.begin(), window_.end(), Sample{}) /
               static_cast<Sample>(window_.size());
    }

 private:
    std::vector<Sample> window_;  // oldest first
    std::size_t maxSamples_;
};

}  // namespace norvane
