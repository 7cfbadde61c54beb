#pragma once

#include <functional>
#include <utility>

#include "drawing/DisplayList.h"
#include "drawing/Size.h"
#include "platform/AccessibleNode.h"
#include "platform/KeyEvent.h"
#include "platform/MonotonicInstant.h"
#include "platform/PointerEvent.h"

namespace norvane {

// What a window or a status item shows, without a word about how it came to be. Main thread only. The surface
// that shows it asks for its size and its picture, and hands it what the user does.
class SurfaceContent {
 public:
    virtual ~SurfaceContent() = default;

    // The size that it would like, in points: finite, at least 0.
    virtual Size fittingSize() = 0;
    // Its picture at this time, laid out into exactly this size.
    virtual DisplayList displayList(Size size, MonotonicInstant at) = 0;
    // The tree that goes with the last picture.
    virtual AccessibleNode accessibleTree() const = 0;

    // Positions are those of the last picture.
    virtual void pointer(const PointerEvent& event) = 0;
    // Whether the key meant something here.
    virtual bool key(const KeyEvent& event) = 0;

    // The surface that shows the content sets one handler and clears it when it no longer does.
    void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

 protected:
    // Says that size or picture may differ from the last ones. The surface asks again soon, once for many.
    void tellChanged() const {
        if (changed_) changed_();
    }

 private:
    std::function<void()> changed_;
};

}  // namespace norvane
