#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/linux/StatusItemHosts.h"
#include "platform/Observers.h"
#include "platform/StatusItem.h"

namespace norvane {

// The status item, whatever carries it at the moment: it remembers what it was told, and tells each host.
class LinuxStatusItem final : public StatusItem {
 public:
    // Both outlive the item.
    LinuxStatusItem(const Desk& desk, BusConnection& sessionBus, double length);

    void setLength(double points) override { hosts_.setLength(points); }
    void setContent(SurfaceContent* content) override;
    void setAction(std::function<void()> action) override { action_ = std::move(action); }
    void setToolTip(const std::string& text) override;
    void setContextMenu(std::vector<StatusMenuItem> items) override;
    std::optional<Rect> buttonFrame() const override;
    Cancellation onButtonDidAppear(std::function<void()> observer) override {
        return appeared_.add(std::move(observer));
    }
    bool knowsItsPresses() const override;

 private:
    void clicked() const;
    void hostChanged();
    void placed();
    std::optional<PixelRect> frameOnScreen() const;

    Desk desk_;
    SurfaceContent* content_ = nullptr;
    std::function<void()> action_;
    std::string toolTip_;
    std::vector<StatusMenuItem> menu_;
    Observers<> appeared_;
    StatusItemHosts hosts_;
    Cancellation accessible_;
};

}  // namespace norvane
