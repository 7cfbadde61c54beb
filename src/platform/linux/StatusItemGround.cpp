#include "platform/linux/StatusItemGround.h"

#include <algorithm>

#include "drawing/PanelTones.h"

namespace norvane {
namespace {

// In points. A square has no room to lose.
constexpr double kInset = 1;
constexpr double kLeastWithInset = 40;
constexpr double kRadius = 5;
constexpr double kRadiusOfSquare = 3;
constexpr double kOpacity = 0.92;

}  // namespace

DisplayItem statusItemGround(Size size, bool isDark, bool isWhole) {
    const Color& tone = panelTones(isDark).strip;
    const Rect all{{}, size};
    if (isWhole) return {"//ground", all, FillShape{RoundedRect{all, 0}, tone}};
    const bool isSquare = size.width < kLeastWithInset;
    const double inset = isSquare ? 0 : kInset;
    const Rect chip{{inset, inset},
                    {std::max(0.0, size.width - 2 * inset), std::max(0.0, size.height - 2 * inset)}};
    return {"//ground", chip,
            FillShape{RoundedRect{chip, isSquare ? kRadiusOfSquare : kRadius}, tone.withOpacity(kOpacity)}};
}

}  // namespace norvane
