#pragma once

#include <span>
#include <vector>

namespace norvane {

// How long a member of a stack can be: at least and at most, in points. The most may be infinite.
struct LengthRange {
    double least = 0;
    double most = 0;
    // Those of higher priority get what they like before the others get more than their least.
    double priority = 0;
};

// Shares `room` out among the members of a stack. Of those of one priority the least flexible takes its part
// first, and what it leaves goes to the others in equal shares; none gets less than its least or more than
// its most. The lengths may add up to more than the room where the least ones do.
std::vector<double> sharedOut(double room, std::span<const LengthRange> members);

}  // namespace norvane
