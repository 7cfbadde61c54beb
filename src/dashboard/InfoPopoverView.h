#pragma once

#include <string>
#include <string_view>

#include "platform/Platform.h"
#include "views/HostedView.h"

namespace norvane {

// What the product is, how it works and how it treats the user's data; its version, and a way to write to its
// makers. It has no state and reads nothing of the machine. Main thread only.
class InfoPopoverView {
 public:
    // The platform outlives the view.
    explicit InfoPopoverView(const Platform& platform);
    InfoPopoverView(const InfoPopoverView&) = delete;
    InfoPopoverView& operator=(const InfoPopoverView&) = delete;

    // The view as a popover shows it.
    SurfaceContent& content() { return hosted_; }

    static constexpr double kWidth = 380;

 private:
    Element body() const;
    Element header() const;
    Element sections() const;
    Element footer() const;
    std::string version() const;

    const MainBundle& mainBundle_;
    Workspace& workspace_;
    HostedView hosted_;
};

}  // namespace norvane
