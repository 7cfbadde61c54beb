#include "dashboard/MemoryExpandedView.h"

#include <cmath>

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/ExternalVolume.h"
#include "dashboard/FigureCell.h"
#include "dashboard/GaugeMotion.h"
#include "dashboard/SteadyInsight.h"
#include "drawing/NamedFonts.h"
#include "insight/MemoryInsight.h"
#include "platform/Decimal.h"
#include "telemetry/Units.h"
#include "views/Divider.h"
#include "views/Proposal.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

// Without a snapshot the whole is taken to be so large.
constexpr double kUnknownTotalGB = 8.0;

struct Tier {
    const char* word;
    Ink color;
};

Tier tierOf(const SystemSnapshot* snapshot) {
    const auto tier = memoryPressureTier(snapshot);
    if (tier == 4) return {"Critical", Ink::red};
    if (tier == 2) return {"Elevated", Ink::orange};
    return {"Normal", Ink::green};
}

Element totalCell(double gigabytes) {
    return text(formatMemorySize(gigabytes) + " Total", {.font = font::system(12, FontWeight::medium)})
        .frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start});
}

}  // namespace

std::string formatMemorySize(double gigabytes) {
    if (!std::isfinite(gigabytes)) return "0.0 GB";
    return formatVolumeSize(gigabytes);
}

Element MemoryExpandedView::body() const {
    const SystemSnapshot* const now = snapshot.get();
    const Tier tier = tierOf(now);
    const Font smaller{.size = 11, .weight = FontWeight::medium, .design = FontDesign::monospaced};
    const Font larger{
        .size = 12, .weight = FontWeight::medium, .design = FontDesign::monospaced, .monospacedDigits = true};
    const auto size = [](const char* label, double gigabytes, const Font& font) {
        return FigureCell{.label = label, .value = formatMemorySize(gigabytes), .font = font};
    };
    const FigureCell usage{.label = "Memory Usage",
                           .value = tier.word,
                           .font = font::system(14, FontWeight::semibold),
                           .valuePaint = tier.color};
    const double used = now != nullptr ? now->usedMemoryGB : 0;
    const double total = now != nullptr ? now->totalMemoryGB : 1.0;
    return vstack({.alignment = Alignment::start, .spacing = 10},
                  hstack({.spacing = kFigureGap},
                         usage.body().frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start}),
                         totalCell(now != nullptr ? now->totalMemoryGB : kUnknownTotalGB)),
                  when(now != nullptr,
                       [&] {
                           return figureRow(size("Wired", now->wiredMemoryGB, smaller),
                                            size("Compressed", now->compressedMemoryGB, smaller));
                       }),
                  when(now != nullptr,
                       [&] {
                           return figureRow(size("App Memory", now->appMemoryGB, larger),
                                            size("Swap", now->swapUsedGB, larger));
                       }),
                  ArdoNeonBar{.value = used, .total = total, .color = tier.color}
                      .body()
                      .accessible({.role = AccessibleRole::meter,
                                   .name = "Memory Used",
                                   .value = formatMemorySize(used),
                                   .number = gaugeNumber(ArdoNeonBar::ratio(used, total))})
                      .frame({.height = 10}),
                  divider().padding({.top = 4}), insightLines(memoryInsightText(now, verbosity), true));
}

}  // namespace norvane
