#pragma once

#include <functional>
#include <memory>

#include "platform/linux/StatusItemHost.h"
#include "platform/Observers.h"
#include "platform/StatusItem.h"

namespace norvane {

// The status item, whatever carries it at the moment: it remembers what it was told, and tells each host.
class LinuxStatusItem final : public StatusItem {
 public:
    using MakeHost = std::function<std::unique_ptr<StatusItemHost>(std::function<void()> clicked)>;

    LinuxStatusItem(double length, const MakeHost& makeHost);

    // Moves the item to another host.
    void setHost(const MakeHost& makeHost);

    void setLength(double points) override;
    void setContent(SurfaceContent* content) override;
    void setAction(std::function<void()> action) override { action_ = std::move(action); }
    void setToolTip(const std::string& text) override;
    void setContextMenu(std::vector<StatusMenuItem> items) override;
    std::optional<Rect> buttonFrame() const override { return host_->buttonFrame(); }
    Cancellation onButtonDidAppear(std::function<void()> observer) override {
        return appeared_.add(std::move(observer));
    }
    bool knowsItsPresses() const override { return host_->knowsItsPresses(); }

 private:
    double length_;
    SurfaceContent* content_ = nullptr;
    std::function<void()> action_;
    std::string toolTip_;
    std::vector<StatusMenuItem> menu_;
    Observers<> appeared_;
    std::unique_ptr<StatusItemHost> host_;
};

}  // namespace norvane
