#include "dashboard/StorageExpandedView.h"

#include <utility>

#include "dashboard/CapacityColor.h"
#include "dashboard/RateRow.h"
#include "dashboard/SteadyInsight.h"
#include "dashboard/StorageVolumeRow.h"
#include "insight/PrimaryVolumes.h"
#include "insight/StorageInsight.h"
#include "views/Divider.h"
#include "views/Stack.h"

namespace norvane {
namespace {

std::vector<Element> capacityRows(const StorageExpandedView& view) {
    const auto volumes = primaryVolumes(view.volumes);
    if (!volumes.empty()) {
        return forEach(volumes, [&](const DiskSnapshot& volume) {
            return StorageVolumeRow{volume.name, volume.isBootVolume ? view.snapshotUsed : volume.usedGB,
                                    volume.isBootVolume ? view.snapshotTotal : volume.totalGB,
                                    diskColor(volume)}
                .body();
        });
    }
    std::vector<Element> rows;
    rows.push_back(StorageVolumeRow{"Macintosh HD", view.snapshotUsed,
                                    view.snapshotTotal > 1 ? view.snapshotTotal : 1, Ink::green}
                       .body());
    return rows;
}

}  // namespace

StorageExpandedView StorageExpandedView::of(std::shared_ptr<const SystemSnapshot> snapshot,
                                            InsightVerbosity verbosity) {
    const SystemSnapshot& now = *snapshot;
    return {.snapshot = std::move(snapshot),
            .volumes = now.volumes,
            .snapshotUsed = now.usedDiskGB,
            .snapshotTotal = now.totalDiskGB,
            .readMBps = now.diskReadMBps,
            .writeMBps = now.diskWriteMBps,
            .verbosity = verbosity};
}

Element StorageExpandedView::body() const {
    return vstack(
        {.alignment = Alignment::start, .spacing = 16},
        vstack({.spacing = 12}, capacityRows(*this)).padding(Insets::vertical(4)), divider().opacity(0.3),
        vstack({.spacing = 10}, RateRow{"Disk Read", readMBps, "DiskRead_VelocityBar"}.body(),
               RateRow{"Disk Write", writeMBps, "DiskWrite_VelocityBar"}.body())
            .padding({.top = 10}),
        divider().opacity(0.3),
        SteadyInsight{.insight =
                          [view = *this] {
                              return storageInsightText(view.snapshot.get(), view.volumes, view.readMBps,
                                                        view.writeMBps, view.verbosity);
                          },
                      .timestamp = snapshot ? std::optional(snapshot->timestamp) : std::nullopt}
            .body());
}

}  // namespace norvane
