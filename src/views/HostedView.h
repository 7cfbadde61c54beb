#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "drawing/TextRuler.h"
#include "platform/Appearance.h"
#include "platform/SurfaceContent.h"
#include "views/Element.h"
#include "views/Scene.h"

namespace norvane {

// Shows a screen on a surface. The screen is its body, a function of its state: it is evaluated when the
// surface asks and the state has changed since, never on its own. Main thread only.
class HostedView : public SurfaceContent {
 public:
    // All outlive the view; so does what `body` looks at.
    HostedView(std::function<Element()> body, TextRuler& ruler, Appearance& appearance);
    HostedView(const HostedView&) = delete;
    HostedView& operator=(const HostedView&) = delete;

    // The state that the body looks at has changed.
    void invalidate();

    Size fittingSize() override;
    DisplayList displayList(Size size, MonotonicInstant at) override;
    AccessibleNode accessibleTree() const override { return scene_.accessible; }
    void pointer(const PointerEvent& event) override;
    bool key(const KeyEvent& event) override;

 private:
    Node& tree();
    const SensitiveRegion* regionAt(Point at) const;
    void hover();

    std::function<Element()> body_;
    TextRuler& ruler_;
    Appearance& appearance_;
    Cancellation appearanceChange_;
    NodePointer tree_;              // null where the state has changed
    Scene scene_;                   // the last picture's
    std::optional<Point> pointer_;  // none while it is elsewhere
    std::vector<SensitiveRegion> hovered_;
    std::optional<std::string> pressed_;
};

}  // namespace norvane
