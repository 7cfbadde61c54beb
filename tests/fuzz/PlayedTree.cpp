#include "PlayedTree.h"

#include <chrono>
#include <cmath>
#include <utility>

namespace norvane {
namespace {

constexpr unsigned kKeys = static_cast<unsigned>(KeyEvent::Key::end) + 1;

// In points, somewhat less than there usually is.
const FrameSize kFixed{.width = 180, .height = 110};

// None for a change that is there at once.
std::optional<Animation> madeAnimation(Choices& choices) {
    const double seconds = choices.fraction();
    const unsigned which = choices.below(9);
    if (which < 2) return std::nullopt;
    if (which == 2) return Animation::linear(seconds);
    if (which == 3) return Animation::easeOut(seconds);
    if (which == 4) return Animation::easeInOut(seconds);
    if (which == 5) return Animation::easeInOut(seconds).foreverThereAndBack();
    if (which == 6) return Animation::linear(seconds).forever();
    return Animation::spring(seconds, choices.fraction());
}

}  // namespace

PlayedTree::PlayedTree(Choices& choices, TextRuler* ruler)
    : choices_(choices),
      plan_(TreePlan::made(choices)),
      isFixed_(plan_.choices[1] % 2 == 0),
      view_([this] { return body(); }, machine_.platform(ruler != nullptr ? *ruler : machine_.textRuler)) {
    view_.setChangeHandler([this] { ++changes_; });
    closeOrOpen();
}

Element PlayedTree::body() {
    Element tree = plan_.element([this](unsigned what) { happened(what); });
    return isFixed_ ? std::move(tree).frame(kFixed) : std::move(tree);
}

void PlayedTree::step() {
    const unsigned what = choices_.below(16);
    if (what < 4) {
        const auto animation = madeAnimation(choices_);
        const auto change = [this] { plan_.change(choices_); };
        animation ? view_.animate(*animation, change) : view_.change(change);
    } else if (what < 6) {
        point();
    } else if (what == 6) {
        type();
    } else if (what == 7 && choices_.below(4) == 0) {
        machine_.appearance.setDark(!machine_.appearance.isDark());
    } else if (what == 7) {
        performAny(view_.accessibleTree());
    } else if (what == 8 && (!isShown_ || choices_.below(3) == 0)) {
        closeOrOpen();
    } else if (what == 8) {
        most_ = {100 + choices_.fraction() * 120, 60 + choices_.fraction() * 120};
    } else {
        const double milliseconds = choices_.fraction() * 300;
        const bool isTime = milliseconds >= 0 && milliseconds < 1e7;
        machine_.advance(std::chrono::microseconds(isTime ? std::llround(milliseconds * 1000) : 0));
    }
    machine_.settle();
}

DisplayList PlayedTree::picture() {
    size_ = view_.fittingSize(most_);
    return view_.displayList(size_, machine_.time.monotonic());
}

// Something has become of what somebody did.
void PlayedTree::happened(unsigned what) {
    if (what % 3 == 0) return;
    const auto changes = [this, what] {
        TreePlan& plan = plan_.at(what % plan_.count());
        plan.numbers[what % plan.numbers.size()] = (what % 7) / 7.0;
        plan.choices[what % plan.choices.size()] += 1;
    };
    what % 2 == 0 ? view_.animate(Animation::easeOut(0.2), changes) : view_.change(changes);
}

void PlayedTree::point() {
    using Kind = PointerEvent::Kind;
    const Point at{choices_.fraction() * most_.width, choices_.fraction() * most_.height};
    const unsigned what = choices_.below(6);
    if (what < 2) view_.pointer({Kind::move, at});
    if (what == 2) view_.pointer({Kind::leave, {}});
    if (what == 3 || what == 4) view_.pointer({Kind::press, at});
    if (what == 4) view_.pointer({Kind::release, at});
    if (what == 5) view_.pointer({Kind::scroll, at, {0, choices_.fraction() * 80 - 20}});
}

void PlayedTree::type() {
    // Mostly to get about.
    const unsigned key = choices_.below(kKeys + 4);
    view_.key({key < kKeys ? static_cast<KeyEvent::Key>(key) : KeyEvent::Key::tab});
}

void PlayedTree::closeOrOpen() {
    isShown_ = !isShown_;
    isShown_ ? view_.appear() : view_.disappear();
}

// Those who do not see it do something with it.
void PlayedTree::performAny(const AccessibleNode& node) {
    if (!node.actions.empty() && choices_.isSo()) {
        view_.perform(node.key, node.actions[choices_.below(static_cast<unsigned>(node.actions.size()))]);
        return;
    }
    if (node.children.empty()) return;
    performAny(node.children[choices_.below(static_cast<unsigned>(node.children.size()))]);
}

}  // namespace norvane
