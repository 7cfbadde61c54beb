#include "dashboard/MenuRootView.h"

#include <string>
#include <utility>

#include "dashboard/ArdoSnapshotPodView.h"
#include "dashboard/PodValue.h"
#include "insight/SystemStatusText.h"
#include "preferences/DefaultsKeys.h"
#include "preferences/StoredValue.h"
#include "views/Button.h"
#include "views/Divider.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {

MenuRootView::MenuRootView(const Platform& platform, const PreferencesStore& preferences,
                           std::shared_ptr<PerformanceSampler> sampler,
                           const SmartPodManager& smartPodManager)
    : application_(platform.application),
      processInfo_(platform.processInfo),
      userDefaults_(platform.userDefaults),
      preferences_(preferences),
      sampler_(std::move(sampler)),
      status_(platform.dispatch.mainQueue(), [this] { hosted_.invalidate(); }),
      openingRule_(smartPodManager),
      hosted_([this] { return body(); }, platform.textRuler, platform.appearance) {
    visibilityChanges_ =
        sampler_->isUIVisible().observe([this](bool isVisible) { didChangeVisibility(isVisible); });
    // A tick publishes its state first and its snapshot, where it has one, after that. The snapshot is what
    // the view shows, so one redraw a tick is enough: the state is read along with it.
    snapshots_ = sampler_->snapshot().observe([this](const auto&) { didPublish(); });
}

std::string_view MenuRootView::systemStatusText() const {
    return norvane::systemStatusText(sampler_->snapshot().get().get(), sampler_->systemState().get(),
                                     processInfo_.isLowPowerModeEnabled());
}

SnapshotSection MenuRootView::sectionIfOpened() const {
    OpeningRule rule = openingRule_;
    return sectionBy(rule);
}

SnapshotSection MenuRootView::sectionBy(OpeningRule& rule) const {
    const auto lastViewedPod = userDefaults_.objectForKey(defaultskey::kLastViewedPod);
    return rule.open(preferences_.isSmartAutoExpandEnabled(), sampler_->snapshot().get().get(),
                     lastViewedPod ? storedText(*lastViewedPod) : std::nullopt);
}

// An opening is one event, although the view first appears in the same moment in which it turns visible.
void MenuRootView::didChangeVisibility(bool isVisible) {
    const bool wasVisible = std::exchange(wasVisible_, isVisible);
    if (!isVisible || wasVisible) return;
    status_.open(systemStatusText());
    expandedSection_ = sectionBy(openingRule_);
    hosted_.invalidate();
}

void MenuRootView::didPublish() {
    if (!sampler_->isUIVisible().get()) return;
    status_.observe(systemStatusText());
    hosted_.invalidate();
}

Element MenuRootView::body() {
    return vstack({.alignment = Alignment::start, .spacing = 6},  //
                  header(),                                       //
                  divider(),                                      //
                  statusLine(),                                   //
                  pods(),                                         //
                  quitRow())
        .padding(Insets::all(12))
        .frame({.width = kWidth});
}

Element MenuRootView::header() const {
    const TextStyle headline{.font = {.size = 13, .weight = FontWeight::bold}};
    return hstack({}, text("Norvane", headline), spacer());
}

Element MenuRootView::statusLine() const {
    const TextStyle style{.font = {.size = 12}, .lineSpacing = 1.5};
    const std::string& stable = status_.stableStatusText();
    return text(stable.empty() ? std::string(systemStatusText()) : stable, style)
        .padding(Insets::vertical(4));
}

Element MenuRootView::pods() const {
    const auto snapshot = sampler_->snapshot().get();
    return hstack({.spacing = 12},                                                 //
                  ArdoSnapshotPodView{"CPU", cpuPodValue(snapshot.get())}.body(),  //
                  ArdoSnapshotPodView{"RAM", memoryPodValue(snapshot.get())}.body())
        .padding(Insets::vertical(8));
}

Element MenuRootView::quitRow() {
    const TextStyle style{.font = {.size = 13}};
    Element label = hstack({},                                                           //
                           text("Quit", style, quitHover_ ? Ink::white : Ink::primary),  //
                           spacer(),                                                     //
                           text("⌘Q", style, quitHover_ ? Ink::white : Ink::secondary))
                        .padding(Insets::horizontal(12))
                        .frame({.height = 24, .maxWidth = Proposal::kMost})
                        .background({.radius = 6, .fill = quitHover_ ? Ink::controlAccentColor : Ink::clear})
                        .onHover([this](bool isOver) {
                            quitHover_ = isOver;
                            hosted_.invalidate();
                        });
    return button("Quit", std::move(label), [this] { application_.terminate(); });
}

}  // namespace norvane
