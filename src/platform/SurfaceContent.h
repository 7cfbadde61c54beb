#pragma once

#include <functional>
#include <string_view>
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

    // It is about to be shown; and it is no longer shown. In between it lives.
    virtual void appear() = 0;
    virtual void disappear() = 0;

    // The size that it would like where there is no more room than `most`, in points: finite, at least 0, not
    // more than `most`.
    virtual Size fittingSize(Size most) = 0;
    // Its picture at this time, laid out into exactly this size. While it moves from one size to another the
    // picture's own size is the one of this moment; it ends at the size asked for.
    virtual DisplayList displayList(Size size, MonotonicInstant at) = 0;
    // How many pictures a second the last one is followed by without anything having changed; 0 where it
    // stands still.
    virtual double frameRate() const = 0;
    // The tree of this moment: of what is shown, whether or not there is a picture of the last change yet.
    virtual AccessibleNode accessibleTree() = 0;

    // Positions are those of the last picture.
    virtual void pointer(const PointerEvent& event) = 0;
    // Whether the key meant something here.
    virtual bool key(const KeyEvent& event) = 0;
    // Does what the accessible node of that key offers under that name. False where there is none such.
    virtual bool perform(std::string_view key, std::string_view action) = 0;
    // Gives the keyboard to what the node of that key stands for. False where it cannot have it.
    virtual bool focus(std::string_view key) = 0;

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
