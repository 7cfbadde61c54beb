#pragma once

#include <pango/pango.h>
#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "drawing/TextStyle.h"
#include "platform/linux/GObjectPointer.h"
#include "platform/linux/TextMask.h"

namespace norvane {

// Set texts, kept for as long as they are asked for again: the ruler measures them, the painter shows them.
// One point of the design is one unit of the layouts, at every scale of the screen; glyphs keep their ideal
// advances, so that a text measures the same at every scale. Main thread only. The font system is not touched
// before the first text.
class TextLayouts {
 public:
    TextLayouts() = default;
    TextLayouts(const TextLayouts&) = delete;
    TextLayouts& operator=(const TextLayouts&) = delete;

    // The text in that style, wrapped to `width` points. A width that is not a number or infinite does not
    // wrap, a negative one is 0. Any bytes may be given: what is not UTF-8, and control characters, become
    // replacement characters, other line breaks than line feeds become spaces, and a text of more than
    // `kLongestText` characters ends in an ellipsis there. A line limit counts all lines of the text,
    // whatever broke them; a negative one is none. The layout is valid until the next call.
    PangoLayout* layout(std::string_view text, const TextStyle& style, double width);

    // The same to be shown: a text that fits into one line is the layout that measured it, which is not set a
    // second time for its place among others.
    struct Shown {
        PangoLayout* layout = nullptr;
        double left = 0;  // points from the text's left edge to the layout's
    };
    Shown shown(std::string_view text, const TextStyle& style, double width);

    // How texts are rasterised at a scale of the screen: with slight hinting where pixels are large, with
    // none where they are fine. Changing it drops what is kept; the measures stay.
    void rasterizeFor(double scale);

    // Whether the last layout that was given consists of outlines alone. Others have pictures for glyphs.
    bool isOutlined() const { return entries_.front().isOutlined; }
    // The last layout's mask for that grid, if one is kept; and keeps one that was made for it. Few are kept
    // for each text, and they are dropped with it.
    const TextMask* mask(const TextMask::Grid& grid) const;
    const TextMask& keep(TextMask mask);

    // What is kept, and never more of it than the bounds below.
    std::size_t count() const { return entries_.size(); }
    void clear();
    // Lets go of the fonts, too: the next text opens those that it needs.
    void close();

    static constexpr std::size_t kLongestText = 4000;
    static constexpr std::size_t kMostLayouts = 512;
    static constexpr std::size_t kMostBytes = 1024 * 1024;  // of texts and masks
    static constexpr std::size_t kMostMasks = 4;            // of each text

 private:
    void evict();
    struct Key {
        std::string_view text;  // of the entry that it leads to
        TextStyle style;
        int width = 0;  // in Pango's units, -1 for unlimited

        bool operator==(const Key&) const = default;
    };
    struct KeyHash {
        std::size_t operator()(const Key& key) const;
    };
    struct Entry {
        std::string text;
        Key key;
        GObjectPointer<PangoLayout> layout;
        bool isOutlined = true;
        std::vector<TextMask> masks;  // the newest last
    };
    using Entries = std::list<Entry>;

    PangoContext* context();
    GObjectPointer<PangoLayout> set(std::string_view text, const TextStyle& style, int width);
    static void limitLines(PangoLayout* layout, int most);

    GObjectPointer<PangoFontMap> fontMap_;
    GObjectPointer<PangoContext> context_;
    bool hinted_ = true;
    Entries entries_;  // the latest used first
    std::unordered_map<Key, Entries::iterator, KeyHash> places_;
    std::size_t bytes_ = 0;  // of all texts and masks kept
};

}  // namespace norvane
