#pragma once

#include <string>

#include "views/Element.h"

namespace norvane {

// A throughput as the panels show it: a dot that is bright while anything flows, what it is, a bar, and the
// rate in whole megabytes a second.
struct RateRow {
    std::string label;
    double rateMBps = 0;
    // Under which the bar keeps its movement; the row's own place where there is none.
    std::string barId = {};

    Element body() const;
};

// The rate cut to a whole number: "12 MB/s". 0 for what is no number, and for what is below 0.
std::string formatRate(double rateMBps);

}  // namespace norvane
