#pragma once

#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "drawing/TextRuler.h"
#include "platform/MonotonicInstant.h"
#include "views/Animated.h"
#include "views/Palette.h"
#include "views/ViewHost.h"

namespace norvane {

// One evaluation of a tree, or of a part of it, as the nodes that take the place of others see it.
class Update {
 public:
    Update(ViewHost& viewHost, TextRuler& textRuler, const Palette& tones, MonotonicInstant at, bool onScreen,
           std::optional<Animation> movement)
        : host(viewHost),
          ruler(textRuler),
          palette(tones),
          now(at),
          isOnScreen(onScreen),
          animation(movement) {}

    ViewHost& host;
    TextRuler& ruler;
    const Palette palette;
    const MonotonicInstant now;
    // What is new in the tree appears at once. Otherwise the whole tree will, when it is shown.
    const bool isOnScreen;
    // What the change behind this evaluation is animated by; none where everything is in its place at once.
    const std::optional<Animation> animation;

    // What layout may move by: an endless animation is meant for a look, not for a place.
    std::optional<Animation> layoutAnimation() const {
        return animation && !animation->repeats ? animation : std::nullopt;
    }

    // A node's attribute, already at its new target, goes on from where its predecessor's stands.
    template <typename T>
    void carry(Animated<T>& mine, const Animated<T>& before) const {
        const T target = mine.target();
        mine = before;
        move(mine, target, animation);
    }
    // The same by another animation, or by none.
    template <typename T>
    void move(Animated<T>& value, const T& target, const std::optional<Animation>& by) const {
        if (target == value.target()) return;
        by ? value.animateTo(target, *by, now) : value.moveTo(target, now);
    }

    // Sizes may differ from the last layout's.
    void layoutChanged() { isLayoutChanged_ = true; }
    bool isLayoutChanged() const { return isLayoutChanged_; }

    // Runs it when the tree is whole again.
    void afterwards(std::function<void()> handler) { handlers_.push_back(std::move(handler)); }
    std::vector<std::function<void()>> takeHandlers() { return std::exchange(handlers_, {}); }

 private:
    bool isLayoutChanged_ = false;
    std::vector<std::function<void()>> handlers_;
};

}  // namespace norvane
