#include "shell/StatusButton.h"

#include <utility>

#include "views/Image.h"
#include "views/Proposal.h"

namespace norvane {
namespace {

// Panels give an item 22 points: some air is left around the image.
constexpr Size kImage{18, 18};

}  // namespace

StatusButton::StatusButton(const Platform& platform) : hosted_([this] { return body(); }, platform) {
    hosted_.appear();  // an item in the panel is there for as long as it lives
}

void StatusButton::setImage(std::optional<std::string> name) {
    hosted_.change([&] { image_ = std::move(name); });
}

void StatusButton::setAlphaValue(double alpha) {
    hosted_.change([&] { alpha_ = alpha; });
}

void StatusButton::fadeTo(double alpha, double seconds) {
    hosted_.animate(Animation::easeInOut(seconds), [&] { alpha_ = alpha; });
}

Element StatusButton::body() const {
    // One without a name is nothing to see, and yet there: what comes into it can fade in.
    return norvane::image(image_.value_or(std::string()), kImage)
        .opacity(alpha_)
        .accessible({.role = AccessibleRole::button, .name = "Norvane"})
        .frame({.maxWidth = Proposal::kMost, .maxHeight = Proposal::kMost});
}

}  // namespace norvane
