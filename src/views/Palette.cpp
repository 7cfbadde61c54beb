#include "views/Palette.h"

#include "views/AccentTone.h"

namespace norvane {
namespace {

constexpr Color rgb(int hex, double alpha = 1) {
    return {((hex >> 16) & 0xFF) / 255.0, ((hex >> 8) & 0xFF) / 255.0, (hex & 0xFF) / 255.0, alpha};
}

struct InkTones {
    Color light;
    Color dark;
};

// The one table of tones. Texts and statuses keep a contrast of 4.5:1 and more on the panel of their
// appearance.
constexpr InkTones tonesOf(Ink ink) {
    switch (ink) {
        case Ink::primary:
            return {rgb(0x1B1D21), rgb(0xF2F3F5)};
        case Ink::secondary:
            return {rgb(0x5A6069), rgb(0xA9B0BA)};
        case Ink::labelColor:
            return {rgb(0x1B1D21), rgb(0xF2F3F5)};
        case Ink::secondaryLabelColor:
            return {rgb(0x5A6069), rgb(0xA9B0BA)};
        case Ink::controlAccentColor:
            return {rgb(0x0B7A4B), rgb(0x17814F)};
        case Ink::link:
            return {rgb(0x0B7A4B), rgb(0x3DD68C)};
        case Ink::controlBackgroundColor:
            return {rgb(0xFFFFFF), rgb(0x14161A)};
        case Ink::separator:
            return {rgb(0x000000, 0.12), rgb(0xFFFFFF, 0.14)};
        case Ink::white:
            return {rgb(0xFFFFFF), rgb(0xFFFFFF)};
        case Ink::black:
            return {rgb(0x000000), rgb(0x000000)};
        case Ink::clear:
            return {Color::clear(), Color::clear()};
        case Ink::red:
            return {rgb(0xC4271B), rgb(0xFF6B60)};
        case Ink::orange:
            return {rgb(0xA85100), rgb(0xFF9F3D)};
        case Ink::yellow:
            return {rgb(0x7F6200), rgb(0xFFD23F)};
        case Ink::green:
            return {rgb(0x1B7A37), rgb(0x3DD16A)};
        case Ink::teal:
            return {rgb(0x00727F), rgb(0x4CC9D9)};
        case Ink::blue:
            return {rgb(0x0A63D1), rgb(0x5AA7FF)};
        case Ink::purple:
            return {rgb(0x8A35C4), rgb(0xC98BF5)};
    }
    return {};
}

}  // namespace

Color Palette::color(Ink ink) const {
    if (ink == Ink::controlAccentColor && accent_) return accentTone(*accent_, isDark_);
    const InkTones tones = tonesOf(ink);
    return isDark_ ? tones.dark : tones.light;
}

Color Palette::color(const Paint& paint) const {
    const Ink* ink = std::get_if<Ink>(&paint.source);
    const Color color = ink != nullptr ? this->color(*ink) : std::get<Color>(paint.source);
    return color.withOpacity(paint.opacity);
}

}  // namespace norvane
