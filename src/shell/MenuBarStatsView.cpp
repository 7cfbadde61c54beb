#include "shell/MenuBarStatsView.h"

#include <string>
#include <utility>

#include "shell/MenuBarStatsText.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

Element column(const std::string& value, const std::string& label) {
    const TextStyle valueStyle{.font = {.size = 11,
                                        .weight = FontWeight::bold,
                                        .design = FontDesign::monospaced,
                                        .monospacedDigits = true}};
    const TextStyle labelStyle{.font = {.size = 8, .weight = FontWeight::semibold}};
    return vstack({},                                        //
                  text(value, valueStyle, Ink::labelColor),  //
                  text(label, labelStyle, Ink::secondaryLabelColor))
        .frame({.minWidth = 22})
        .accessible({.role = AccessibleRole::text, .name = label, .value = value});
}

// Which is which, their units tell.
Element row(const std::string& value, const std::string& label) {
    const TextStyle style{.font = {.size = 9,
                                   .weight = FontWeight::bold,
                                   .design = FontDesign::monospaced,
                                   .monospacedDigits = true}};
    return text(value, style, Ink::labelColor)
        .condensedToFit()
        .accessible({.role = AccessibleRole::text, .name = label, .value = value});
}

}  // namespace

Element MenuBarStatsView::body() const {
    const Texts now = texts();
    if (isSquare_) {
        return vstack({}, row(now.cpu, "CPU"), row(now.ram, "RAM"))
            .padding(Insets::horizontal(1.5))
            .frame({.maxWidth = Proposal::kMost, .maxHeight = Proposal::kMost});
    }
    // The item keeps its width whatever the digits: a row that is wider is narrowed, never cropped.
    return hstack({.spacing = 4},          //
                  column(now.cpu, "CPU"),  //
                  column(now.ram, "RAM"))
        .padding(Insets::horizontal(3))
        .condensedToFit()
        .frame({.maxWidth = Proposal::kMost, .maxHeight = Proposal::kMost});
}

MenuBarStatsView::Texts MenuBarStatsView::texts() const {
    return {menuBarCPUText(model_.cpuPercent.get()),
            menuBarRAMText(model_.ramUsedGB.get(), model_.ramTotalGB.get())};
}

void MenuBarStatsView::observe(std::function<void()> onChange) {
    onChange_ = std::move(onChange);
    told_ = texts();
    // The values change with every tick, what can be read of them seldom.
    const auto changed = [this](double) {
        Texts now = texts();
        if (now == told_) return;
        told_ = std::move(now);
        onChange_();
    };
    cpuPercent_ = model_.cpuPercent.observe(changed);
    ramUsedGB_ = model_.ramUsedGB.observe(changed);
    ramTotalGB_ = model_.ramTotalGB.observe(changed);
}

}  // namespace norvane
