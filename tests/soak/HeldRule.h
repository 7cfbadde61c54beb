#pragma once

#include <chrono>
#include <optional>

#include "platform/WallInstant.h"

namespace norvane {

// What a state of two values has to be, said once more: it turns bad when the condition has held for five
// seconds without a break, and good when it has been absent for ten.
class HeldRule {
 public:
    void see(bool isBad, WallInstant now) {
        if (isBad == isBad_) {
            differsSince_.reset();
            return;
        }
        if (!differsSince_)
            differsSince_ = now;
        else if (now - *differsSince_ >= std::chrono::seconds(isBad ? 5 : 10)) {
            isBad_ = isBad;
            differsSince_.reset();
        }
    }
    bool isBad() const { return isBad_; }

 private:
    bool isBad_ = false;
    std::optional<WallInstant> differsSince_;
};

}  // namespace norvane
