#pragma once

#include <array>
#include <string_view>

#include "platform/RawText.h"

namespace norvane {

// The four pods of the dashboard. Stored by the names of the cases.
enum class SnapshotSection { cpu, memory, storage, battery };

template <>
inline constexpr std::array<std::string_view, 4> kRawTexts<SnapshotSection>{"cpu", "memory", "storage",
                                                                            "battery"};

}  // namespace norvane
