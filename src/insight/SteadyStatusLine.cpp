#include "insight/SteadyStatusLine.h"

#include <chrono>
#include <utility>

namespace norvane {

SteadyStatusLine::SteadyStatusLine(MainQueue& mainQueue, std::function<void()> onChange)
    : mainQueue_(mainQueue), onChange_(std::move(onChange)) {}

void SteadyStatusLine::open(std::string_view text) {
    debounceTask_.cancel();
    stableStatusText_ = text;
    lastObserved_ = text;
}

void SteadyStatusLine::observe(std::string_view text) {
    if (text == lastObserved_) return;
    lastObserved_ = text;
    debounceTask_ = mainQueue_.after(std::chrono::seconds(3), [this] { settle(); });
}

void SteadyStatusLine::settle() {
    // A verdict that went and came back within the wait writes what is there already.
    if (stableStatusText_ == lastObserved_) return;
    stableStatusText_ = lastObserved_;
    if (onChange_) onChange_();
}

}  // namespace norvane
