#pragma once

#include <functional>
#include <string>

#include "platform/Cancellation.h"
#include "shell/MenuBarStatsModel.h"
#include "views/Element.h"

namespace norvane {

// The label in the panel: CPU load and memory in use, in two columns, or, where a panel gives no more than a
// square, the two values alone, one above the other. It has no state of its own.
class MenuBarStatsView {
 public:
    // The model outlives the view.
    explicit MenuBarStatsView(const MenuBarStatsModel& model) : model_(model) {}
    MenuBarStatsView(const MenuBarStatsView&) = delete;
    MenuBarStatsView& operator=(const MenuBarStatsView&) = delete;

    // Below this width, in points, the columns could no longer be read.
    static constexpr double kLeastWidth = 50;

    Element body() const;
    // How wide the place is that the next body is for, in points.
    void setWidth(double width) { isSquare_ = width < kLeastWidth; }
    bool isSquare() const { return isSquare_; }
    // Told whenever the body has become another one.
    void observe(std::function<void()> onChange);

 private:
    struct Texts {
        std::string cpu;
        std::string ram;
        bool operator==(const Texts&) const = default;
    };
    Texts texts() const;

    const MenuBarStatsModel& model_;
    std::function<void()> onChange_;
    Texts told_;
    bool isSquare_ = false;
    Cancellation cpuPercent_;
    Cancellation ramUsedGB_;
    Cancellation ramTotalGB_;
};

}  // namespace norvane
