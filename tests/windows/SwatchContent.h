#pragma once

#include <optional>
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
    std::optional<Size> onTheWay;  // to that size; none once it is there
    std::vector<Swatch> swatches;
    double rate = 0;
    bool usesKeys = false;

    int pictures = 0;
    Size most;  // what it was offered last
    Size given;
    std::vector<MonotonicInstant> times;
    std::vector<PointerEvent> pointerEvents;
    std::vector<KeyEvent> keyEvents;

    void change() { tellChanged(); }

    void appear() override {}
    void disappear() override {}
    Size fittingSize(Size offered) override {
        most = offered;
        return size;
    }
    DisplayList displayList(Size room, MonotonicInstant at) override {
        ++pictures;
        given = room;
        times.push_back(at);
        DisplayList painted{onTheWay.value_or(room), {}};
        for (const auto& [rect, color] : swatches) {
            painted.items.push_back(
                {std::to_string(painted.items.size()), rect, FillShape{RoundedRect{rect, 0}, color}});
        }
        return painted;
    }
    double frameRate() const override { return rate; }
    AccessibleNode accessibleTree() override { return {}; }
    void pointer(const PointerEvent& event) override { pointerEvents.push_back(event); }
    bool key(const KeyEvent& event) override {
        keyEvents.push_back(event);
        return usesKeys;
    }
    bool perform(std::string_view, std::string_view) override { return false; }
    bool focus(std::string_view) override { return false; }
};

}  // namespace norvane
