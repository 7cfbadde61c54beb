#include "platform/linux/VolumeEjections.h"

#include <utility>

namespace norvane {

VolumeEjections::VolumeEjections(BusConnection& systemBus, MainQueue& mainQueue,
                                 BackgroundQueue& backgroundQueue, RootFolder root)
    : bus_(systemBus), mainQueue_(mainQueue), backgroundQueue_(backgroundQueue), root_(std::move(root)) {}

void VolumeEjections::begin(const std::string& path, Completion completion) {
    UnderWay& entry = underWay_[path];
    entry.completions.push_back(std::move(completion));
    if (entry.ejection) return;
    entry.ejection = std::make_unique<VolumeEjection>(
        bus_, mainQueue_, backgroundQueue_, root_, path,
        [this, path](const std::optional<std::string>& error) { end(path, error); });
}

void VolumeEjections::end(const std::string& path, const std::optional<std::string>& error) {
    // Any of them may be the end of this.
    const auto ended = underWay_.extract(path);
    for (const Completion& completion : ended.mapped().completions)
        completion(error);
}

}  // namespace norvane
