#include "platform/linux/SwapTraffic.h"

#include <algorithm>

#include "platform/linux/Saturated.h"

namespace norvane {

void SwapTraffic::feed(const VmStat& vmStat, const std::vector<Device>& devices) {
    std::uint64_t sectorsRead = 0;
    std::uint64_t sectorsWritten = 0;
    for (const Device& device : devices) {
        const auto before = std::find_if(lastDevices_.begin(), lastDevices_.end(),
                                         [&](const Device& last) { return last.zram == device.zram; });
        if (before == lastDevices_.end()) continue;
        sectorsRead =
            saturatedSum(sectorsRead, saturatedDifference(device.stat.sectorsRead, before->stat.sectorsRead));
        sectorsWritten = saturatedSum(
            sectorsWritten, saturatedDifference(device.stat.sectorsWritten, before->stat.sectorsWritten));
    }
    lastDevices_ = devices;

    if (started_) {
        const auto pages = [this](std::uint64_t sectors) {
            return saturatedProduct(sectors, BlockStat::kSectorBytes) / pageBytes_;
        };
        sums_.pswpin = saturatedSum(
            sums_.pswpin,
            saturatedDifference(saturatedDifference(vmStat.pswpin, last_.pswpin), pages(sectorsRead)));
        sums_.pswpout = saturatedSum(
            sums_.pswpout,
            saturatedDifference(saturatedDifference(vmStat.pswpout, last_.pswpout), pages(sectorsWritten)));
    } else {
        sums_ = vmStat;
    }
    started_ = true;
    last_ = vmStat;
}

}  // namespace norvane
