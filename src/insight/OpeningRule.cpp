#include "insight/OpeningRule.h"

#include <utility>

namespace norvane {
namespace {

std::optional<SnapshotSection> sectionOf(const std::optional<std::string>& rawText) {
    return rawText ? fromRawText<SnapshotSection>(*rawText) : std::nullopt;
}

}  // namespace

SnapshotSection OpeningRule::open(bool isSmartAutoExpandEnabled, const SystemSnapshot* snapshot,
                                  const std::optional<std::string>& lastViewedPod) {
    const SnapshotSection remembered = sectionOf(lastViewedPod).value_or(SnapshotSection::cpu);
    if (isSmartAutoExpandEnabled) {
        if (snapshot == nullptr) return SnapshotSection::cpu;
        return sectionOf(manager_->evaluate(*snapshot)).value_or(remembered);
    }
    return std::exchange(hasOpenedBefore_, true) ? remembered : SnapshotSection::cpu;
}

}  // namespace norvane
