#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/CairoPainter.h"
#include "platform/linux/Desk.h"
#include "platform/linux/FrameClock.h"
#include "platform/linux/NotifierItem.h"
#include "platform/linux/NotifierMenu.h"
#include "platform/linux/StatusItemHost.h"

namespace norvane {

// The status item as a notifier item: a panel shows a square picture of it, its tooltip and its menu.
class NotifierHost final : public StatusItemHost {
 public:
    // Each may end the host.
    struct Handlers {
        std::function<void()> clicked;
        // A panel's watcher has taken the item: from now on there is a button.
        std::function<void()> registered;
        // It cannot be shown this way.
        std::function<void()> refused;
    };

    // The session bus outlives it. No two hosts of a process have the same number.
    NotifierHost(const Desk& desk, BusConnection& sessionBus, unsigned number, Handlers handlers);
    ~NotifierHost() override;

    // It is as wide as the panel has it.
    void setLength(double) override {}
    void setContent(SurfaceContent* content) override;
    void setToolTip(const std::string& text) override { item_.setToolTip(text); }
    void setContextMenu(const std::vector<StatusMenuItem>& items) override { menu_.setItems(items); }
    std::optional<Rect> buttonFrame() const override;
    bool knowsItsPresses() const override { return false; }

 private:
    // Each scale has its own, whose texts need not be set anew for the other one.
    struct Canvas {
        explicit Canvas(double pixelsPerPoint) : scale(pixelsPerPoint) {}

        NotifierImage paint(const DisplayList& list);

        const double scale;
        TextLayouts layouts;
        CairoPainter painter{layouts};
    };

    void contentChanged();
    std::vector<NotifierImage> paint();
    void activated(int x, int y);

    Desk desk_;
    const Handlers handlers_;
    SurfaceContent* content_ = nullptr;
    Canvas coarse_{1};
    Canvas fine_{2};
    FrameClock frames_;
    std::vector<NotifierImage> sent_;
    std::optional<MonotonicInstant> movingSince_;  // or since it was sent, moving
    // Where it was clicked on last.
    struct Pixel {
        int x;
        int y;
    };
    std::optional<Pixel> click_;
    NotifierMenu menu_;
    NotifierItem item_;
    Cancellation appearance_;
    Cancellation dropMemory_;
};

}  // namespace norvane
