#include "dashboard/StorageDetailListView.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/CapacityColor.h"
#include "dashboard/FigureCell.h"
#include "dashboard/GaugeMotion.h"
#include "dashboard/ShownVolumeName.h"
#include "drawing/NamedFonts.h"
#include "views/Button.h"
#include "views/Proposal.h"
#include "views/ShapeElement.h"
#include "views/Spinner.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Symbol.h"
#include "views/Text.h"
#include "views/WeakState.h"

namespace norvane {

// What lasts for as long as the list is on the screen, also while the popover is closed in between.
struct StorageDetailListView::Listing {
    std::vector<ExternalVolume> externalVolumes;
    std::set<std::string> ejectingURLs;

    // Scans are numbered as they begin, on whatever thread; they may end in another order.
    std::shared_ptr<std::atomic<std::uint64_t>> scans = std::make_shared<std::atomic<std::uint64_t>>(0);
    std::uint64_t shownScan = 0;
    // What has been ejected, with the latest scan that may have seen it still.
    std::map<std::string, std::uint64_t> ejectedURLs = {};

    // What is listened to while somebody looks. Also a list that is on its way out stops listening.
    struct Watch {
        Cancellation mounts;
        Cancellation unmounts;
    };
    std::shared_ptr<Watch> watch = {};
    Cancellation visibilityChanges = {};

    void show(std::uint64_t scan, std::vector<ExternalVolume> volumes);
    void endEjection(const std::string& url, bool isGone);
};

namespace {

// After an unmount, until the machine has forgotten the volume.
constexpr std::chrono::milliseconds kUnmountDelay{500};
constexpr double kControlSide = 16;
constexpr double kButtonRadius = 6;
// An empty card reader's slot has no size to tell of.
constexpr double kLeastTotalGB = 0.1;

Element figuresOf(const ExternalVolume& volume, const std::string& sizes) {
    const TextStyle style{.font = {.size = 11, .weight = FontWeight::medium, .monospacedDigits = true},
                          .lineLimit = 1};
    return vstack({.alignment = Alignment::start, .spacing = 4},
                  text(sizes, style, Paint(Ink::primary).withOpacity(0.8)),
                  ArdoNeonBar{.value = volume.usedGB(),
                              .total = volume.totalGB,
                              .color = capacityColor(capacityRatio(volume.usedGB(), volume.totalGB))}
                      .body()
                      .frame({.height = 5}));
}

Element plate() {
    return shape(Outline::roundedRectangle(kButtonRadius), {.fill = Paint(Ink::primary).withOpacity(0.1)});
}

}  // namespace

void StorageDetailListView::Listing::show(std::uint64_t scan, std::vector<ExternalVolume> volumes) {
    if (scan <= shownScan) return;
    shownScan = scan;
    std::erase_if(ejectedURLs, [scan](const auto& ejected) { return ejected.second < scan; });
    std::erase_if(volumes, [this](const ExternalVolume& volume) { return ejectedURLs.contains(volume.url); });
    externalVolumes = std::move(volumes);
}

void StorageDetailListView::Listing::endEjection(const std::string& url, bool isGone) {
    ejectingURLs.erase(url);
    if (!isGone) return;
    ejectedURLs[url] = scans->load();
    std::erase_if(externalVolumes, [&](const ExternalVolume& volume) { return volume.url == url; });
}

void StorageDetailListView::appear(const State<Listing>& listing) const {
    // The state holds its subscriptions, so these do not hold the state.
    const WeakState weak(listing);
    const auto rescanAfter = [view = *this, weak](std::chrono::nanoseconds delay) {
        return [view, weak, delay] {
            if (const auto now = weak.lock()) view.refreshExternalVolumes(*now, delay);
        };
    };
    // First, so that nothing that comes during the scan is missed.
    listing.change([&](Listing& now) {
        now.watch = std::make_shared<Listing::Watch>(Listing::Watch{
            workspace.onDidMount(rescanAfter({})), workspace.onDidUnmount(rescanAfter(kUnmountDelay))});
        now.visibilityChanges = isUIVisible.observe([watch = std::weak_ptr(now.watch)](bool isVisible) {
            if (const auto listened = isVisible ? nullptr : watch.lock()) *listened = {};
        });
    });
    refreshExternalVolumes(listing);
}

void StorageDetailListView::refreshExternalVolumes(const State<Listing>& listing,
                                                   std::chrono::nanoseconds delay) const {
    // Only what the background queue's tasks may use at the very end is used there.
    Task scan([&files = fileManager, &main = dispatch.mainQueue(), &ids = uuidSource,
               weak = WeakState(listing), scans = listing->scans] {
        const std::uint64_t number = ++*scans;
        auto urls = files.mountedVolumeURLs().value_or(std::vector<VolumeURL>());
        main.async([&ids, weak, number, urls = std::move(urls)] {
            if (const auto alive = weak.lock())
                alive->change([&](Listing& now) { now.show(number, externalVolumesIn(urls, ids)); });
        });
    });
    if (delay > delay.zero()) {
        dispatch.backgroundQueue().asyncAfter(delay, std::move(scan));
    } else {
        dispatch.backgroundQueue().async(std::move(scan));
    }
}

void StorageDetailListView::ejectVolume(const State<Listing>& listing, const std::string& url) const {
    listing.change([&](Listing& now) { now.ejectingURLs.insert(url); });
    // It may take long enough for the list to be gone.
    workspace.unmountAndEjectDevice(
        url, [weak = WeakState(listing), url](const std::optional<std::string>& error) {
            if (const auto alive = weak.lock())
                alive->change([&](Listing& now) { now.endEjection(url, !error); });
        });
}

void StorageDetailListView::ejectAllVolumes(const State<Listing>& listing) const {
    const std::vector<ExternalVolume> volumes = listing->externalVolumes;
    for (const ExternalVolume& volume : volumes)
        ejectVolume(listing, volume.url);
}

Element StorageDetailListView::row(const State<Listing>& listing, const ExternalVolume& volume) const {
    const std::string name = shownVolumeName(volume);
    const bool isSized = volume.totalGB > kLeastTotalGB;
    const std::string sizes =
        formatVolumeSize(volume.availableGB) + " available of " + formatVolumeSize(volume.totalGB);
    const bool isEjecting = listing->ejectingURLs.contains(volume.url);
    Element words =
        vstack({.alignment = Alignment::start, .spacing = 4}, panelLabel(name),
               when(isSized, [&] { return figuresOf(volume, sizes); }))
            .accessible(isSized ? Accessible{.role = AccessibleRole::meter,
                                             .name = name,
                                             .value = sizes,
                                             .number = gaugeNumber(1 - volume.availableGB / volume.totalGB)}
                                : Accessible{.role = AccessibleRole::text, .name = name});
    const auto ejectButton = [&] {
        return button("Eject " + name,
                      symbol("eject.fill", font::system(11, FontWeight::bold))
                          .frame({.width = kControlSide, .height = kControlSide}),
                      [view = *this, listing, url = volume.url] { view.ejectVolume(listing, url); });
    };
    return hstack({.spacing = 8},  //
                  symbol("externaldrive.fill", font::system(16)).frame({.width = 20}),
                  std::move(words).frame({.maxWidth = Proposal::kMost, .horizontal = Alignment::start}),
                  isEjecting ? spinner("Ejecting " + name, kControlSide) : ejectButton())
        .padding(Insets::all(5))
        .background(plate())
        .id(volume.url);
}

Element StorageDetailListView::body() const {
    return stateful<Listing>({}, [view = *this](const State<Listing>& listing) {
        const auto& volumes = listing->externalVolumes;
        const auto ejectAll = [&] {
            return button("Eject All",
                          hstack({.spacing = 4},  //
                                 symbol("eject.fill", font::system(10, FontWeight::bold)),
                                 text("Eject All", {.font = font::system(11, FontWeight::medium)}))
                              .padding({.top = 4, .left = 8, .bottom = 4, .right = 8})
                              .background(plate()),
                          [view, listing] { view.ejectAllVolumes(listing); }, {.radius = kButtonRadius})
                .padding({.bottom = 4});
        };
        return vstack(
                   {.alignment = Alignment::end, .spacing = 8},
                   when(volumes.empty(),
                        [] {
                            return text("No removable volumes", {.font = font::system(12)}, Ink::secondary)
                                .padding(Insets::vertical(8))
                                .frame({.maxWidth = Proposal::kMost});
                        }),
                   when(volumes.size() >= 2, ejectAll),
                   forEach(volumes, [&](const ExternalVolume& volume) { return view.row(listing, volume); }))
            .padding({.bottom = 4})
            .onAppear([view, listing] { view.appear(listing); });
    });
}

}  // namespace norvane
