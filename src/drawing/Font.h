#pragma once

namespace norvane {

enum class FontWeight { regular, medium, semibold, bold };

// `monospaced` is a typeface in which all characters are equally wide.
enum class FontDesign { standard, monospaced };

// What a text is set in. The size is in points; a design point is one point, whatever the screen's scale.
struct Font {
    double size = 13;
    FontWeight weight = FontWeight::regular;
    FontDesign design = FontDesign::standard;
    // Digits of equal width, so that a changing number does not jitter.
    bool monospacedDigits = false;

    bool operator==(const Font&) const = default;
};

}  // namespace norvane
