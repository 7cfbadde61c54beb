#include "dashboard/CPUDetailListView.h"

#include <string>

#include "dashboard/ArdoCoreArc.h"
#include "dashboard/CoreItem.h"
#include "dashboard/FigureCell.h"
#include "drawing/NamedFonts.h"
#include "platform/Decimal.h"
#include "views/Grid.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

// Digits of one width, as everywhere in the panels, so that a cluster's figure does not push the other
// cluster.
Element cluster(const std::string& label, double usage, Ink ink) {
    const std::string value = decimal(usage, 2) + "%";
    return hstack({.spacing = 4},     //
                  panelDot(ink),      //
                  panelLabel(label),  //
                  text(value, {.font = {.size = 12, .weight = FontWeight::medium, .monospacedDigits = true}}))
        .accessible({.role = AccessibleRole::text, .name = label, .value = value});
}

}  // namespace

Element CPUDetailListView::body() const {
    if (!snapshot) return Element::none();
    const bool hasEfficiency = !snapshot->efficiencyCoreUsages.empty();
    const bool hasPerformance = !snapshot->performanceCoreUsages.empty();
    return vstack({.spacing = 12},
                  when(!hw.chipName().empty(),
                       [this] {
                           return text(hw.chipName(), {.font = font::system(13, FontWeight::medium)})
                               .transition(Transition::opacity());
                       }),
                  when(hasEfficiency || hasPerformance,
                       [&] {
                           return hstack({.spacing = kFigureGap},
                                         when(hasEfficiency,
                                              [this] {
                                                  return cluster("Efficiency Cluster",
                                                                 snapshot->efficiencyCoreUsage,
                                                                 kEfficiencyInk);
                                              }),
                                         when(hasPerformance, [this] {
                                             return cluster("Performance Cluster",
                                                            snapshot->performanceCoreUsage, kPerformanceInk);
                                         }));
                       }),
                  // The columns share the whole width; each ring stands in the middle of its own.
                  grid({.columns = 8, .columnSpacing = 8, .rowSpacing = 16},
                       forEach(coreItems(*snapshot),
                               [](const CoreItem& core) {
                                   return ArdoCoreArc{.usage = core.usage,
                                                      .color = core.color,
                                                      .index = static_cast<int>(core.index)}
                                       .body()
                                       .id(std::to_string(core.id));
                               })))
        .padding(Insets::vertical(4));
}

}  // namespace norvane
