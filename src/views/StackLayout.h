#pragma once

#include <span>
#include <vector>

namespace norvane {

// How long a member of a stack can be, in points: 0 <= least <= most, `most` perhaps infinite.
struct LengthRange {
    double least = 0;
    double most = 0;
};

// Shares `room` among the members. The least flexible choose first, each offered an equal part of what is
// left; so stiff ones get what they need and flexible ones divide the rest. Nobody gets less than its least,
// also where the room does not suffice.
std::vector<double> sharedOut(double room, std::span<const LengthRange> members);

}  // namespace norvane
