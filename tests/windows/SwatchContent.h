#pragma once

#include <string>
#include <vector>

#include "platform/SurfaceContent.h"

namespace norvane {

// A content made of coloured squares, that remembers what it was told.
class SwatchContent final : public SurfaceContent {
 public:
    struct Swatch {
        Rect rect;
        Color color;
    };

    Size size{200, 120};
    std::vector<Swatch> swatches;
    // Painted instead of the swatches where it has items.
    DisplayList list;
    bool usesKeys = false;

    int pictures = 0;
    std::vector<Size> sizes;
    std::vector<PointerEvent> pointerEvents;
    std::vector<KeyEvent> keyEvents;

    void change() { tellChanged(); }

    Size fittingSize() override { return size; }
    DisplayList displayList(Size given, MonotonicInstant) override {
        ++pictures;
        sizes.push_back(given);
        if (!list.items.empty()) return list;
        DisplayList painted{given, {}};
        for (std::size_t i = 0; i < swatches.size(); ++i) {
            painted.items.push_back(
                {std::to_string(i), swatches[i].rect, FillShape{{swatches[i].rect, 0}, swatches[i].color}});
        }
        return painted;
    }
    AccessibleNode accessibleTree() const override { return {}; }
    void pointer(const PointerEvent& event) override { pointerEvents.push_back(event); }
    bool key(const KeyEvent& event) override {
        keyEvents.push_back(event);
        return usesKeys;
    }
};

}  // namespace norvane
