#include "dashboard/MenuRootView.h"

#include <string>
#include <utility>

#include "dashboard/ArdoSnapshotPodView.h"
#include "dashboard/BatteryDetailListView.h"
#include "dashboard/BatteryExpandedView.h"
#include "dashboard/CPUDetailListView.h"
#include "dashboard/CPUExpandedView.h"
#include "dashboard/MemoryDetailListView.h"
#include "dashboard/MemoryExpandedView.h"
#include "dashboard/PodLook.h"
#include "dashboard/PodValue.h"
#include "dashboard/StorageDetailListView.h"
#include "dashboard/StorageExpandedView.h"
#include "drawing/NamedFonts.h"
#include "insight/ImpactPod.h"
#include "insight/SystemStatusText.h"
#include "preferences/DefaultsKeys.h"
#include "preferences/StoredValue.h"
#include "views/Button.h"
#include "views/Divider.h"
#include "views/Proposal.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

const Animation kEntrance = Animation::easeOut(0.18);
const Animation kPress = Animation::easeOut(0.25);

// What a pod shows of the snapshot, which is null before the first.
ArdoSnapshotPodView podOf(SnapshotSection section, const SystemSnapshot* now) {
    switch (section) {
        case SnapshotSection::cpu:
            return {.icon = "cpu", .title = "CPU", .value = cpuPodValue(now), .color = cpuPodColor(now)};
        case SnapshotSection::memory:
            return {.icon = "memorychip",
                    .title = "RAM",
                    .value = memoryPodValue(now),
                    .isWide = true,
                    .color = memoryPodColor(now)};
        case SnapshotSection::storage:
            return {.icon = "internaldrive",
                    .title = "Disk",
                    .value = storagePodValue(now),
                    .isWide = true,
                    .color = storagePodColor(now)};
        case SnapshotSection::battery:
            return {.icon = std::string(impactPodIcon(now)),
                    .title = "Impact",
                    .value = {std::string(impactPodValue(now)), ""},
                    .color = batteryPodColor(now)};
    }
    return {};
}

}  // namespace

MenuRootView::MenuRootView(const Platform& platform, const PreferencesStore& preferences,
                           std::shared_ptr<PerformanceSampler> sampler,
                           const SmartPodManager& smartPodManager,
                           std::function<const CPUHardwareInfo&()> hardware, Callbacks callbacks)
    : application_(platform.application),
      processInfo_(platform.processInfo),
      userDefaults_(platform.userDefaults),
      appearance_(platform.appearance),
      dispatch_(platform.dispatch),
      fileManager_(platform.fileManager),
      workspace_(platform.workspace),
      uuidSource_(platform.uuidSource),
      preferences_(preferences),
      sampler_(std::move(sampler)),
      hardware_(std::move(hardware)),
      callbacks_(std::move(callbacks)),
      status_(platform.dispatch.mainQueue(), [this] { hosted_.invalidate(); }),
      openingRule_(smartPodManager),
      hosted_([this] { return body(); }, platform) {
    visibilityChanges_ =
        sampler_->isUIVisible().observe([this](bool isVisible) { didChangeVisibility(isVisible); });
    // A tick publishes its state first and its snapshot, where it has one, after that. The snapshot is what
    // the view shows, so one redraw a tick is enough: the state is read along with it.
    preferenceChanges_ = preferences_.observe([this] { hosted_.invalidate(); });
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
    hosted_.change([this] {
        expandedSection_ = sectionBy(openingRule_);
        status_.open(systemStatusText());
    });
}

void MenuRootView::didPublish() {
    if (!sampler_->isUIVisible().get()) return;
    status_.observe(systemStatusText());
    hosted_.invalidate();
}

// The user's choice holds for as long as the popover stays open.
void MenuRootView::pressed(SnapshotSection section) {
    hosted_.animate(kPress, [&] {
        if (expandedSection_ == section) {
            expandedSection_.reset();
            return;
        }
        expandedSection_ = section;
        userDefaults_.setObject(defaultskey::kLastViewedPod, std::string(rawTextOf(section)));
    });
}

Element MenuRootView::body() {
    return vstack({.alignment = Alignment::start, .spacing = 6},  //
                  header(),                                       //
                  divider(),                                      //
                  statusLine(),                                   //
                  pods(),                                         //
                  when(expandedSection_.has_value(), [this] { return panelCard(*expandedSection_); }),
                  when(expandedSection_.has_value(), [this] { return detailList(*expandedSection_); }),
                  when(expandedSection_.has_value(), [] { return divider(); }),  //
                  quitRow())
        .padding(Insets::all(12))
        .frame({.width = kWidth})
        .opacity(hasAppeared_ ? 1 : 0)
        .offset({0, hasAppeared_ ? 0.0 : -6.0})
        .onAppear([this] {
            if (!hasAppeared_) hosted_.animate(kEntrance, [this] { hasAppeared_ = true; });
        });
}

Element MenuRootView::header() {
    return hstack(
        {.spacing = 6},                             //
        text("Norvane", {.font = font::kHeadline})  //
            .accessible({.role = AccessibleRole::heading, .name = "Norvane"}),
        spacer(),
        headerButton(isPinned_ ? "pin.fill" : "pin",
                     {.role = AccessibleRole::toggle, .name = "Pin", .isOn = isPinned_},
                     [this] {
                         hosted_.change([this] { isPinned_ = !isPinned_; });
                         callbacks_.onTogglePin();
                     }),
        headerButton("gearshape", {.role = AccessibleRole::button, .name = "Settings"},
                     callbacks_.onOpenSettings),
        headerButton("info.circle", {.role = AccessibleRole::button, .name = "Info"}, callbacks_.onOpenInfo));
}

Element MenuRootView::headerButton(std::string_view symbolName, Accessible told,
                                   std::function<void()> action) const {
    return button(std::move(told),
                  symbol(std::string(symbolName), font::system(15, FontWeight::semibold))
                      .frame({.width = 20, .height = 20}),
                  std::move(action));
}

Element MenuRootView::statusLine() const {
    const TextStyle style{.font = font::system(12), .lineSpacing = 1.5};
    const std::string& stable = status_.stableStatusText();
    const std::string shown = stable.empty() ? std::string(systemStatusText()) : stable;
    return text(shown, style)
        .accessible({.role = AccessibleRole::text, .name = shown, .isLive = true})
        .padding(Insets::vertical(4));
}

Element MenuRootView::pods() {
    return hstack({.spacing = 12},                //
                  pod(SnapshotSection::cpu),      //
                  pod(SnapshotSection::memory),   //
                  pod(SnapshotSection::storage),  //
                  pod(SnapshotSection::battery))
        .padding(Insets::vertical(8));
}

Element MenuRootView::pod(SnapshotSection section) {
    const auto snapshot = sampler_->snapshot().get();
    const SystemSnapshot* now = snapshot.get();
    ArdoSnapshotPodView view = podOf(section, now);
    view.isActive = expandedSection_ == section;
    view.action = [this, section] { pressed(section); };
    // The pods share a row that is a little short for all of them: those with a long unit give way.
    return view.body().layoutPriority(view.isWide ? 0 : 1);
}

Element MenuRootView::panelCard(SnapshotSection section) {
    const auto snapshot = sampler_->snapshot().get();
    const InsightVerbosity verbosity = preferences_.insightVerbosity();
    const auto panel = [&]() -> Element {
        switch (section) {
            case SnapshotSection::cpu:
                return CPUExpandedView{snapshot, sampler_->cpuHistory().get(), verbosity}.body();
            case SnapshotSection::memory:
                return MemoryExpandedView{snapshot, verbosity}.body();
            case SnapshotSection::storage:
                if (!snapshot) break;
                return StorageExpandedView::of(snapshot, verbosity).body();
            case SnapshotSection::battery:
                if (!snapshot || !snapshot->hasBattery) break;
                return BatteryExpandedView{snapshot, verbosity, preferences_.temperatureUnit(), processInfo_}
                    .body();
        }
        return Element::none();
    };
    const double shadow = appearance_.isDark() ? 0 : 0.08;
    return scrollArea(vstack({.alignment = Alignment::start, .spacing = 8},  //
                             panel().id(std::string(rawTextOf(section)))))
        .padding(Insets::all(12))
        .frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start})
        .background(
            shape(Outline::roundedRectangle(10), {.fill = Paint(Ink::controlBackgroundColor).withOpacity(0.4),
                                                  .shadows = {{.paint = Paint(Ink::black).withOpacity(shadow),
                                                               .radius = 6,
                                                               .offset = {0, 2},
                                                               .isOutsideOnly = true}}}))
        .layoutPriority(1)
        .transition(Transition::opacity());
}

Element MenuRootView::detailList(SnapshotSection section) {
    const auto snapshot = sampler_->snapshot().get();
    const auto list = [&]() -> Element {
        switch (section) {
            case SnapshotSection::cpu:
                return CPUDetailListView{snapshot, hardware_()}.body();
            case SnapshotSection::memory:
                if (!snapshot) break;
                return MemoryDetailListView{snapshot->cachedFilesGB, snapshot->swapReadMBps,
                                            snapshot->swapWriteMBps}
                    .body();
            case SnapshotSection::storage:
                return StorageDetailListView{fileManager_, workspace_, dispatch_, uuidSource_,
                                             sampler_->isUIVisible()}
                    .body();
            case SnapshotSection::battery:
                if (!snapshot || !snapshot->hasBattery) break;
                return BatteryDetailListView{snapshot}.body();
        }
        return Element::none();
    };
    if (section == SnapshotSection::storage && (!snapshot || snapshot->volumes.empty())) {
        return Element::none();
    }
    // The popover never grows past the screen: what does not fit of the list scrolls, and where that is not
    // enough, the panel does. Each pod's list begins at its top.
    return scrollArea(vstack({.spacing = 8}, list()).padding({.top = 8, .left = 12, .right = 12}))
        .id(std::string(rawTextOf(section)))
        .transition(Transition::move(Edge::top).withOpacity());
}

Element MenuRootView::quitRow() {
    const TextStyle style{.font = font::system(13)};
    Element label = hstack({},                                                           //
                           text("Quit", style, quitHover_ ? Ink::white : Ink::primary),  //
                           spacer(),                                                     //
                           text("⌘Q", style, quitHover_ ? Ink::white : Ink::secondary))
                        .padding(Insets::horizontal(12))
                        .frame({.height = 24, .maxWidth = Proposal::kMost})
                        .background(shape(Outline::roundedRectangle(6),
                                          {.fill = quitHover_ ? Ink::controlAccentColor : Ink::clear}))
                        .onHover([this](bool isOver) { hosted_.change([&] { quitHover_ = isOver; }); });
    return button("Quit", std::move(label), [this] { application_.terminate(); }, {.radius = 6});
}

}  // namespace norvane
