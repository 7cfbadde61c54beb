#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "platform/WallInstant.h"
#include "views/Element.h"

namespace norvane {

// A panel's sentence, steadied for as long as the panel is on the screen.
struct SteadyInsight {
    // The text of the snapshot of now.
    std::function<std::string_view()> insight;
    // Of that snapshot; a new one counts as an update. None before the first.
    std::optional<WallInstant> timestamp;
    // Each line as a text of its own, or the whole text as one.
    bool isSplit = true;

    Element body() const;
};

// The sentence as all panels set it. Empty lines are left out where it is split.
Element insightLines(std::string_view text, bool isSplit);

}  // namespace norvane
