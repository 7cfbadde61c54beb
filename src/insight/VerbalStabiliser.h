#pragma once

#include <string>
#include <string_view>

namespace norvane {

// Keeps an explanation steady: a new text replaces the one on screen only after three updates in a row have
// produced it. Lives as long as its panel is on screen. Main thread only.
class VerbalStabiliser {
 public:
    static constexpr int kRequiredTicks = 3;

    // The panel appears: the text of that moment stands at once, and nothing is trying to take over.
    void appear(std::string_view text) {
        stableVerbalText_ = text;
        forgetCandidate();
    }

    // A new snapshot was published, which gives this text. Whether the text on screen became another one.
    bool update(std::string_view text);

    // What is on screen; `live`, the text of this moment, where none has been fixed yet.
    std::string_view displayed(std::string_view live) const {
        return stableVerbalText_.empty() ? live : std::string_view(stableVerbalText_);
    }

    const std::string& stableVerbalText() const { return stableVerbalText_; }

 private:
    void forgetCandidate();

    std::string stableVerbalText_;
    // The text that is trying to take over, and how many updates in a row have produced it.
    std::string candidateVerbalText_;
    int candidateTicks_ = 0;
};

}  // namespace norvane
