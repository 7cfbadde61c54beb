#pragma once

#include <functional>

#include "platform/Cancellation.h"
#include "shell/MenuBarStatsModel.h"
#include "views/Element.h"

namespace norvane {

// The label in the panel: CPU load and memory in use, in two columns. It has no state of its own.
class MenuBarStatsView {
 public:
    // The model outlives the view.
    explicit MenuBarStatsView(const MenuBarStatsModel& model) : model_(model) {}

    Element body() const;
    // Told whenever the body would be another one.
    void observe(const std::function<void()>& onChange);

 private:
    const MenuBarStatsModel& model_;
    Cancellation cpuPercent_;
    Cancellation ramUsedGB_;
    Cancellation ramTotalGB_;
};

}  // namespace norvane
