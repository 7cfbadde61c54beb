#pragma once

#include <optional>
#include <string>

#include "views/HostedView.h"

namespace norvane {

// What the status item's button shows by itself: one of our images, in its own colours, more or less opaque.
// Main thread only.
class StatusButton {
 public:
    // The platform outlives the button.
    explicit StatusButton(const Platform& platform);
    StatusButton(const StatusButton&) = delete;
    StatusButton& operator=(const StatusButton&) = delete;

    SurfaceContent& content() { return hosted_; }

    // By its name, or none; an image that does not exist is shown as none.
    void setImage(std::optional<std::string> name);
    const std::optional<std::string>& image() const { return image_; }
    // From 0 to 1, at once.
    void setAlphaValue(double alpha);
    // The same over so many seconds.
    void fadeTo(double alpha, double seconds);

 private:
    Element body() const;

    std::optional<std::string> image_;
    double alpha_ = 1;
    HostedView hosted_;
};

}  // namespace norvane
