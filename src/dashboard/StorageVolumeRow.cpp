#include "dashboard/StorageVolumeRow.h"

#include "dashboard/KeyedBar.h"
#include "dashboard/ShownVolumeName.h"
#include "drawing/NamedFonts.h"
#include "platform/Decimal.h"

namespace norvane {

// A terabyte is 1000 gigabytes here, as disks are sold.
std::string formatUsedOverTotal(double usedGB, double totalGB) {
    const bool isLarge = totalGB >= 1000;
    const double unit = isLarge ? 1000 : 1;
    return decimal(usedGB / unit, 2) + " / " + decimal(totalGB / unit, 2) + (isLarge ? " TB" : " GB");
}

Element StorageVolumeRow::body() const {
    return KeyedBar{.label = shownVolumeName(name),
                    .value = formatUsedOverTotal(used, total),
                    .valueFont = font::system(11, FontWeight::medium),
                    .bar = {.value = used, .total = total, .color = color},
                    .filled = "Used Space",
                    .rest = "Free Space"}
        .body();
}

}  // namespace norvane
