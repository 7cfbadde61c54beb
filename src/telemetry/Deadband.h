#pragma once

namespace norvane {

// A threshold that switches on at one value and off at another, so that a value hovering between them changes
// nothing. A band for which large values are alarming is asked with `update`, one for which small values are
// with `updateFalling`; the band itself does not know which it is.
class Deadband {
 public:
    Deadband(double thresholdOn, double thresholdOff)
        : thresholdOn_(thresholdOn), thresholdOff_(thresholdOff) {}

    // Both return the new state. The test for on comes first, so it decides where the thresholds coincide.
    // What is not a number changes nothing.
    bool update(double value) {
        if (value >= thresholdOn_) {
            isActive_ = true;
        } else if (value <= thresholdOff_) {
            isActive_ = false;
        }
        return isActive_;
    }
    bool updateFalling(double value) {
        if (value <= thresholdOn_) {
            isActive_ = true;
        } else if (value >= thresholdOff_) {
            isActive_ = false;
        }
        return isActive_;
    }

    bool isActive() const { return isActive_; }

 private:
    bool isActive_ = false;
    double thresholdOn_;
    double thresholdOff_;
};

}  // namespace norvane
