#include "platform/linux/TextLayouts.h"

#include <hb-ot.h>
#include <pango/pangocairo.h>
#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <utility>

#include "drawing/TextRuler.h"
#include "platform/linux/CairoHandles.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr const char* kStandardFamilies = "Inter, DejaVu Sans, sans-serif";
constexpr const char* kMonospacedFamilies = "JetBrains Mono, DejaVu Sans Mono, monospace";
constexpr double kSmallestFont = 1;
constexpr double kLargestFont = 512;
constexpr double kWidestLayout = 100'000;
constexpr double kLargestLineSpacing = 1000;
// From this scale on, stems fall well enough between the pixels without hints.
constexpr double kFinePixels = 1.5;

// A text is not set on more lines than this: each line costs as much as all that follows it.
constexpr std::size_t kMostLines = 256;
// Of the font's size: no letter that makes up a text is narrower.
constexpr double kNarrowestLetter = 0.2;

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

struct FontDescriptionDeleter {
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
};
struct AttributesDeleter {
    void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
};
struct FontOptionsDeleter {
    void operator()(cairo_font_options_t* options) const { cairo_font_options_destroy(options); }
};

PangoWeight weightOf(FontWeight weight) {
    switch (weight) {
        case FontWeight::regular:
            return PANGO_WEIGHT_NORMAL;
        case FontWeight::medium:
            return PANGO_WEIGHT_MEDIUM;
        case FontWeight::semibold:
            return PANGO_WEIGHT_SEMIBOLD;
        case FontWeight::bold:
            return PANGO_WEIGHT_BOLD;
    }
    return PANGO_WEIGHT_NORMAL;
}

PangoAlignment alignmentOf(TextAlignment alignment) {
    switch (alignment) {
        case TextAlignment::leading:
            return PANGO_ALIGN_LEFT;
        case TextAlignment::center:
            return PANGO_ALIGN_CENTER;
        case TextAlignment::trailing:
            return PANGO_ALIGN_RIGHT;
    }
    return PANGO_ALIGN_LEFT;
}

// A number that may be anything, within bounds.
double bounded(double value, double low, double high, double ifNone) {
    return std::isfinite(value) ? std::clamp(value, low, high) : ifNone;
}

int pangoUnits(double points) {
    return static_cast<int>(std::lround(points * PANGO_SCALE));
}

// Rounded to the nearest unit: a width that was measured and added and subtracted again does not wrap.
int layoutWidth(double points) {
    if (!std::isfinite(points) || points > kWidestLayout) return -1;
    return pangoUnits(std::max(points, 0.0));
}

bool isPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return (c >= ' ' && c <= '~') || c == '\n'; });
}

// Well-formed UTF-8 without a control character but the line feed, and with no other line break.
std::string displayable(std::string_view text) {
    if (isPlain(text)) return std::string(text);
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const auto [character, bytes] = takeUtf8Character(text);
        if (character == '\n') {
            shown += '\n';
        } else if (character == '\t' || character == '\r' || character == 0x2028 || character == 0x2029) {
            shown += ' ';
        } else if (character < 0x20 || (character >= 0x7F && character < 0xA0)) {
            shown += kReplacement;
        } else {
            shown += bytes;
        }
    }
    return shown;
}

void clip(std::string& text, std::size_t characters) {
    if (text.size() <= characters) return;  // no character has less than one byte
    const char* end = text.data();
    const char* const whole = text.data() + text.size();
    for (std::size_t i = 0; i < characters && end < whole; ++i)
        end = g_utf8_next_char(end);
    if (end >= whole) return;
    text.resize(static_cast<std::size_t>(end - text.data()));
    text += kEllipsis;
}

// How many characters of a text are set in lines of that many of Pango's units.
std::size_t mostCharacters(double fontSize, int width) {
    if (width < 0) return TextLayouts::kLongestText;
    const double perLine = pango_units_to_double(width) / (kNarrowestLetter * fontSize);
    return kMostLines * (static_cast<std::size_t>(std::max(perLine, 0.0)) + 1);
}

bool hasPictures(PangoFont* font) {
    hb_face_t* const face = hb_font_get_face(pango_font_get_hb_font(font));
    return hb_ot_color_has_png(face) || hb_ot_color_has_layers(face) || hb_ot_color_has_svg(face);
}

bool hasOnlyOutlines(PangoLayout* layout) {
    for (const GSList* line = pango_layout_get_lines_readonly(layout); line != nullptr; line = line->next) {
        const auto* const runs = static_cast<const PangoLayoutLine*>(line->data)->runs;
        for (const GSList* run = runs; run != nullptr; run = run->next) {
            if (hasPictures(static_cast<const PangoLayoutRun*>(run->data)->item->analysis.font)) return false;
        }
    }
    return true;
}

}  // namespace

std::size_t TextLayouts::KeyHash::operator()(const Key& key) const {
    std::size_t hash = std::hash<std::string_view>{}(key.text);
    const auto mix = [&hash](std::size_t value) {
        hash ^= value + 0x9E3779B97F4A7C15u + (hash << 6) + (hash >> 2);
    };
    const Font& font = key.style.font;
    mix(std::hash<double>{}(font.size));
    mix(static_cast<std::size_t>(font.weight) * 16 + static_cast<std::size_t>(font.design) * 8 +
        static_cast<std::size_t>(font.monospacedDigits) * 4 + static_cast<std::size_t>(key.style.alignment));
    mix(static_cast<std::size_t>(key.width));
    mix(static_cast<std::size_t>(key.style.lineLimit));
    return hash;
}

void TextLayouts::rasterizeFor(double scale) {
    const bool hinted = !(scale >= kFinePixels);
    if (hinted == hinted_) return;
    hinted_ = hinted;
    clear();
    context_.reset();
}

void TextLayouts::clear() {
    places_.clear();
    entries_.clear();
    bytes_ = 0;
}

void TextLayouts::close() {
    clear();
    context_.reset();
    fontMap_.reset();
}

PangoLayout* TextLayouts::layout(std::string_view text, const TextStyle& style, double width) {
    // No more bytes than the longest text can have are looked at, and one character more to see that it is
    // cut.
    text = text.substr(0, (kLongestText + 1) * 4);
    TextStyle bounds = style;
    bounds.font.size = bounded(style.font.size, kSmallestFont, kLargestFont, Font{}.size);
    bounds.lineSpacing = bounded(style.lineSpacing, 0, kLargestLineSpacing, 0);
    bounds.lineLimit = std::max(style.lineLimit, 0);
    const int units = layoutWidth(width);

    const auto found = places_.find(Key{text, bounds, units});
    if (found != places_.end()) {
        entries_.splice(entries_.begin(), entries_, found->second);
        return entries_.front().layout.get();
    }

    Entry& entry = entries_.emplace_front();
    entry.text = text;
    entry.layout = set(text, bounds, units);
    entry.key = {entry.text, bounds, units};
    entry.isOutlined = hasOnlyOutlines(entry.layout.get());
    places_.emplace(entry.key, entries_.begin());
    bytes_ += entry.text.size();
    evict();
    return entries_.front().layout.get();
}

TextLayouts::Shown TextLayouts::shown(std::string_view text, const TextStyle& style, double width) {
    // What begins at the right in other scripts, Pango knows.
    const bool isLine =
        text.size() <= kLongestText && isPlain(text) && text.find('\n') == std::string_view::npos;
    const int units = layoutWidth(width);
    if (!isLine || units < 0) return {layout(text, style, width)};
    PangoLayout* const line = layout(text, style, TextRuler::kUnlimitedWidth);
    int needed = 0;
    pango_layout_get_size(line, &needed, nullptr);
    if (needed > units) return {layout(text, style, width)};
    const double free = pango_units_to_double(units - needed);
    switch (style.alignment) {
        case TextAlignment::leading:
            return {line};
        case TextAlignment::center:
            return {line, free / 2};
        case TextAlignment::trailing:
            return {line, free};
    }
    return {line};
}

// The latest used one stays, whatever its size.
void TextLayouts::evict() {
    while (entries_.size() > 1 && (entries_.size() > kMostLayouts || bytes_ > kMostBytes)) {
        bytes_ -= entries_.back().text.size();
        for (const TextMask& mask : entries_.back().masks)
            bytes_ -= mask.bytes;
        places_.erase(entries_.back().key);
        entries_.pop_back();
    }
}

const TextMask* TextLayouts::mask(const TextMask::Grid& grid) const {
    const std::vector<TextMask>& masks = entries_.front().masks;
    const auto found =
        std::find_if(masks.begin(), masks.end(), [&grid](const TextMask& mask) { return mask.grid == grid; });
    return found == masks.end() ? nullptr : &*found;
}

const TextMask& TextLayouts::keep(TextMask mask) {
    std::vector<TextMask>& masks = entries_.front().masks;
    if (masks.size() >= kMostMasks) {
        bytes_ -= masks.front().bytes;
        masks.erase(masks.begin());
    }
    bytes_ += mask.bytes;
    masks.push_back(std::move(mask));
    evict();
    return masks.back();
}

PangoContext* TextLayouts::context() {
    if (context_) return context_.get();
    if (!fontMap_) {
        fontMap_.reset(pango_cairo_font_map_new());
        pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap_.get()), 72);  // a point is a unit
    }
    context_.reset(pango_font_map_create_context(fontMap_.get()));
    const std::unique_ptr<cairo_font_options_t, FontOptionsDeleter> options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_hint_style(options.get(),
                                      hinted_ ? CAIRO_HINT_STYLE_SLIGHT : CAIRO_HINT_STYLE_NONE);
    pango_cairo_context_set_font_options(context_.get(), options.get());
    pango_context_set_round_glyph_positions(context_.get(), FALSE);
    pango_context_set_language(context_.get(), pango_language_from_string("en"));
    return context_.get();
}

GObjectPointer<PangoLayout> TextLayouts::set(std::string_view text, const TextStyle& style, int width) {
    GObjectPointer<PangoLayout> layout(pango_layout_new(context()));
    const std::unique_ptr<PangoFontDescription, FontDescriptionDeleter> font(pango_font_description_new());
    pango_font_description_set_family_static(
        font.get(), style.font.design == FontDesign::monospaced ? kMonospacedFamilies : kStandardFamilies);
    pango_font_description_set_size(font.get(), pangoUnits(style.font.size));
    pango_font_description_set_weight(font.get(), weightOf(style.font.weight));
    pango_layout_set_font_description(layout.get(), font.get());
    if (style.font.monospacedDigits) {
        const std::unique_ptr<PangoAttrList, AttributesDeleter> attributes(pango_attr_list_new());
        pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("tnum=1"));
        pango_layout_set_attributes(layout.get(), attributes.get());
    }
    pango_layout_set_spacing(layout.get(), pangoUnits(style.lineSpacing));
    pango_layout_set_alignment(layout.get(), alignmentOf(style.alignment));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    pango_layout_set_width(layout.get(), width);
    std::string shown = displayable(text);
    clip(shown, std::min(kLongestText, mostCharacters(style.font.size, width)));
    pango_layout_set_text(layout.get(), shown.data(), static_cast<int>(shown.size()));
    if (style.lineLimit > 0) limitLines(layout.get(), style.lineLimit);
    return layout;
}

// Pango limits the lines of each paragraph only. So the lines that stay become a paragraph each, of one line,
// and all that follows them in the last one's own paragraph is left to be shortened to the width.
void TextLayouts::limitLines(PangoLayout* layout, int most) {
    if (pango_layout_get_line_count(layout) <= most) return;
    const std::string_view text = pango_layout_get_text(layout);
    std::string kept;
    const GSList* line = pango_layout_get_lines_readonly(layout);
    for (int i = 1; i < most; ++i, line = line->next) {
        const auto* const whole = static_cast<const PangoLayoutLine*>(line->data);
        std::string_view words = text.substr(static_cast<std::size_t>(whole->start_index),
                                             static_cast<std::size_t>(whole->length));
        while (!words.empty() && words.back() == ' ')
            words.remove_suffix(1);
        kept.append(words) += '\n';
    }
    const auto start = static_cast<std::size_t>(static_cast<const PangoLayoutLine*>(line->data)->start_index);
    const std::size_t end = std::min(text.find('\n', start), text.size());
    kept.append(text.substr(start, end - start));
    if (text.find_first_not_of("\n ", end) != std::string_view::npos) kept += kEllipsis;
    pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
    pango_layout_set_height(layout, -1);
    pango_layout_set_text(layout, kept.data(), static_cast<int>(kept.size()));
}

}  // namespace norvane
