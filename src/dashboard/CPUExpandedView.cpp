#include "dashboard/CPUExpandedView.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "dashboard/ArdoMultiCPUGraph.h"
#include "dashboard/FigureCell.h"
#include "dashboard/GaugeMotion.h"
#include "dashboard/SteadyInsight.h"
#include "drawing/NamedFonts.h"
#include "insight/CPUInsight.h"
#include "platform/Decimal.h"
#include "platform/WholeNumber.h"
#include "views/Divider.h"
#include "views/Stack.h"

namespace norvane {
namespace {

// What the graph shows, for those who do not see it.
std::string historySentence(const std::vector<CPUHistoryPoint>* history) {
    if (history == nullptr || history->empty()) return "No history yet.";
    double highest = 0;
    for (const CPUHistoryPoint& point : *history)
        highest = std::max(highest, point.total);
    const std::string now = gaugePercent(history->back().total / 100);
    if (history->size() == 1) return "One reading: now " + now + ".";
    return "The last " + std::to_string(history->size()) + " readings: now " + now + ", at most " +
           gaugePercent(highest / 100) + ".";
}

}  // namespace

std::string formatUptime(double seconds) {
    constexpr std::int64_t kMinute = 60;
    constexpr std::int64_t kHour = 60 * kMinute;
    constexpr std::int64_t kDay = 24 * kHour;
    const std::int64_t whole = std::isfinite(seconds) ? wholeNumber(seconds) : 0;
    const std::string hours = std::to_string(whole % kDay / kHour) + "h";
    if (whole < kDay) return hours + " " + std::to_string(whole % kHour / kMinute) + "m";
    return std::to_string(whole / kDay) + "d " + hours;
}

Element CPUExpandedView::body() const {
    const SystemSnapshot* const now = snapshot.get();
    const bool isCritical = now != nullptr && now->cpuState == ComponentState::critical;
    const Ink stateInk = isCritical ? Ink::red : Ink::green;
    const Font valueFont{
        .size = 11, .weight = FontWeight::medium, .design = FontDesign::monospaced, .monospacedDigits = true};
    const auto percent = [](double value) { return decimal(value, 2) + "%"; };

    FigureCell usage{.label = "CPU Usage",
                     .value = isCritical ? "Critical" : "Normal",
                     .font = font::system(14, FontWeight::semibold),
                     .valuePaint = stateInk,
                     .glow = Paint(stateInk).withOpacity(0.3)};
    if (isCritical) usage.dot = Ink::red;
    FigureCell gpu{.label = "GPU Impact", .font = valueFont};
    FigureCell uptime{.label = "System Uptime", .font = valueFont};
    FigureCell idle{.label = "Idle Capacity", .font = valueFont};
    if (now != nullptr) {
        gpu.value = percent(now->gpuUsage);
        uptime.value = formatUptime(now->uptime);
        idle.value = percent(now->idlePercent);
    }
    return vstack({.alignment = Alignment::start, .spacing = 10},  //
                  figureRow(usage, gpu),                           //
                  figureRow(uptime, idle),                         //
                  ArdoMultiCPUGraph{.history = history, .refreshInterval = 1.0}
                      .body()
                      .accessible({.role = AccessibleRole::image,
                                   .name = "CPU History",
                                   .value = historySentence(history.get())})
                      .frame({.height = 80}),
                  divider(),
                  SteadyInsight{.insight =
                                    [snapshot = snapshot, verbosity = verbosity] {
                                        return cpuInsightText(snapshot.get(), verbosity);
                                    },
                                .timestamp = now != nullptr ? std::optional(now->timestamp) : std::nullopt}
                      .body()
                      .padding({.top = 4}));
}

}  // namespace norvane
