#include "views/AccentTone.h"

#include "drawing/Contrast.h"
#include "drawing/PanelTones.h"

namespace norvane {
namespace {

constexpr double kLeastContrast = 3;

bool isReadable(const Color& color, const Color& ground) {
    return contrastBetween(color, ground) >= kLeastContrast;
}

// As little of the way from the colour to an end, which stands out from the ground, as makes it stand out
// too.
Color towards(const Color& end, const Color& color, const Color& ground) {
    constexpr int kSteps = 16;  // each halves what the way may be too long
    double tooShort = 0;
    double enough = 1;
    for (int step = 0; step < kSteps; ++step) {
        const double way = (tooShort + enough) / 2;
        (isReadable(laidUpon(end.withOpacity(way), color), ground) ? enough : tooShort) = way;
    }
    return laidUpon(end.withOpacity(enough), color);
}

}  // namespace

// A dark panel leaves room between the two: what is just light enough for it is dark enough for white text.
Color accentTone(const Color& chosen, bool isDark) {
    Color tone = chosen;
    if (!isReadable(tone, Color::white())) tone = towards(Color::black(), tone, Color::white());
    const Color panel = panelTones(isDark).panel;
    if (!isReadable(tone, panel)) tone = towards(isDark ? Color::white() : Color::black(), tone, panel);
    return tone;
}

}  // namespace norvane
