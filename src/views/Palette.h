#pragma once

#include <optional>

#include "drawing/Color.h"
#include "views/Paint.h"

namespace norvane {

// What the inks look like in one appearance. A value, equal to another that gives the same colours.
class Palette {
 public:
    static Palette light() { return of(false); }
    static Palette dark() { return of(true); }
    // With the user's own accent colour, if there is one, in place of ours.
    static Palette of(bool isDark, const std::optional<Color>& accent = std::nullopt) {
        return Palette(isDark, accent);
    }

    bool isDark() const { return isDark_; }

    Color color(Ink ink) const;
    Color color(const Paint& paint) const;

    bool operator==(const Palette&) const = default;

 private:
    Palette(bool isDark, const std::optional<Color>& accent) : isDark_(isDark), accent_(accent) {}

    bool isDark_;
    std::optional<Color> accent_;
};

}  // namespace norvane
