#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "insight/SteadyStatusLine.h"
#include "platform/Platform.h"
#include "telemetry/PerformanceSampler.h"
#include "views/Element.h"
#include "views/HostedView.h"

namespace norvane {

// The root of the main popover. From top to bottom: the header, the status line, the pods, the quit row.
// Built once and kept; its state survives closing and reopening, except as an opening sets it anew. Main
// thread only.
class MenuRootView {
 public:
    // The platform outlives the view.
    MenuRootView(const Platform& platform, std::shared_ptr<PerformanceSampler> sampler);
    MenuRootView(const MenuRootView&) = delete;
    MenuRootView& operator=(const MenuRootView&) = delete;

    // The view as a popover shows it.
    SurfaceContent& content() { return hosted_; }

    static constexpr double kWidth = 520;

 private:
    Element body();
    Element header() const;
    Element statusLine() const;
    Element pods() const;
    Element quitRow();

    std::string_view systemStatusText() const;
    void didChangeVisibility(bool isVisible);
    void didPublish();

    Application& application_;
    ProcessInfo& processInfo_;
    std::shared_ptr<PerformanceSampler> sampler_;
    SteadyStatusLine status_;
    bool quitHover_ = false;
    bool wasVisible_ = false;
    HostedView hosted_;
    Cancellation visibilityChanges_;
    Cancellation snapshots_;
};

}  // namespace norvane
