#include "insight/VerbalStabiliser.h"

#include <utility>

namespace norvane {

bool VerbalStabiliser::update(std::string_view text) {
    if (text == stableVerbalText_) {
        forgetCandidate();
        return false;
    }
    if (text != candidateVerbalText_) {
        candidateVerbalText_ = text;
        candidateTicks_ = 1;
        return false;
    }
    if (++candidateTicks_ < kRequiredTicks) return false;
    stableVerbalText_ = std::move(candidateVerbalText_);
    forgetCandidate();
    return true;
}

void VerbalStabiliser::forgetCandidate() {
    candidateVerbalText_.clear();
    candidateTicks_ = 0;
}

}  // namespace norvane
