#pragma once

#include "drawing/Color.h"
#include "views/Paint.h"

namespace norvane {

// What the inks look like in one appearance.
class Palette {
 public:
    static const Palette& light();
    static const Palette& dark();
    static const Palette& of(bool isDark) { return isDark ? dark() : light(); }

    Color color(Ink ink) const;
    Color color(const Paint& paint) const;

 private:
    explicit Palette(bool isDark) : isDark_(isDark) {}

    bool isDark_;
};

}  // namespace norvane
