#include "dashboard/BatteryExpandedView.h"

#include <string>

#include "dashboard/BatteryLook.h"
#include "dashboard/SteadyInsight.h"
#include "dashboard/WidgetRingView.h"
#include "drawing/NamedFonts.h"
#include "insight/BatteryInsight.h"
#include "views/Divider.h"
#include "views/Proposal.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr double kRingWidth = 110;

}  // namespace

Element BatteryExpandedView::body() const {
    const SystemSnapshot* const now = snapshot.get();
    const bool isLowPower = processInfo.isLowPowerModeEnabled();
    const auto temperature = now != nullptr ? now->batteryTemperatureC : std::nullopt;
    const WidgetRingView level{.title = "Battery Level",
                               .valueText = std::to_string(now != nullptr ? now->batteryPercentage : 0) + "%",
                               .iconName = powerIconName(now, isLowPower),
                               .iconColor = powerIconColor(now, isLowPower),
                               .progress = batteryLevelProgress(now),
                               .activeColor = batteryLevelColor(now, isLowPower),
                               .useSpring = true};
    const WidgetRingView heat{.title = "Battery Temperature",
                              .valueText = formatBatteryTemperature(temperature, temperatureUnit),
                              .iconName = "thermometer.medium",
                              .progress = batteryTemperatureProgress(temperature),
                              .saysShare = false,
                              .activeColor = batteryTemperatureColor(temperature),
                              .useSpring = true};
    const auto line = [](std::string words, bool hasFigures = false) {
        return text(std::move(words),
                    {.font = {.size = 12, .weight = FontWeight::medium, .monospacedDigits = hasFigures}});
    };
    return vstack({.alignment = Alignment::start, .spacing = 10},
                  hstack({}, level.body().frame({.width = kRingWidth}),
                         vstack({.alignment = Alignment::start, .spacing = 8},
                                line("Power Source: " + powerSourceName(now)),
                                line(now != nullptr ? now->batteryTimeRemaining : "Estimating…", true),
                                line(std::string("Energy mode: ") + (isLowPower ? "Low Power" : "Automatic")))
                             .frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start})
                             .padding(Insets::horizontal(20)),
                         heat.body().frame({.width = kRingWidth})),
                  divider().opacity(0.3),
                  SteadyInsight{.insight =
                                    [snapshot = snapshot, verbosity = verbosity, &process = processInfo] {
                                        return batteryInsightText(snapshot.get(),
                                                                  process.isLowPowerModeEnabled(), verbosity);
                                    },
                                .timestamp = now != nullptr ? std::optional(now->timestamp) : std::nullopt,
                                .isSplit = false}
                      .body());
}

}  // namespace norvane
