#include "drawing/DisplayList.h"

#include <iomanip>
#include <locale>
#include <sstream>
#include <string_view>
#include <utility>

namespace norvane {
namespace {

// On one line, whatever the text holds.
std::string inQuotes(std::string_view text) {
    std::string words = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') words += '\\';
        words += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return words + '"';
}

std::string formatted(auto&&... parts) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text << std::setprecision(6);
    (text << ... << parts);
    return text.str();
}

std::string inWords(Point p) {
    return formatted(p.x, ',', p.y);
}
std::string inWords(const Rect& r) {
    return formatted(r.origin.x, ',', r.origin.y, ' ', r.size.width, 'x', r.size.height);
}
std::string inWords(const Color& c) {
    return formatted("rgba(", c.red, ',', c.green, ',', c.blue, ',', c.alpha, ')');
}
std::string inWords(const Fill& fill) {
    if (fill.isPlain()) return inWords(fill.from);
    return inWords(fill.from) + " to " + inWords(fill.to) + " from " + inWords(fill.start) + " to " +
           inWords(fill.end);
}
std::string inWords(const RoundedRect& shape) {
    if (shape.radius == 0) return inWords(shape.rect);
    return inWords(shape.rect) + formatted(" radius ", shape.radius) +
           (shape.corners == CornerStyle::continuous ? " continuous" : "");
}
std::string inWords(const Arc& arc) {
    return formatted("arc ", arc.center.x, ',', arc.center.y, " radius ", arc.radius, " from ", arc.from,
                     " to ", arc.to);
}
std::string inWords(const PlacedPath& path) {
    return formatted("path of ", path.path ? path.path->segments.size() : 0, " in ") + inWords(path.bounds());
}
std::string inWords(const Shape& shape) {
    return std::visit([](const auto& kind) { return inWords(kind); }, shape);
}
std::string inWords(const StrokeStyle& style) {
    std::string words = formatted(" width ", style.width);
    if (style.cap == LineCap::round) words += " round caps";
    if (style.join == LineJoin::round) words += " round joins";
    if (style.dashOn > 0 && style.dashOff > 0) words += formatted(" dash ", style.dashOn, ',', style.dashOff);
    return words;
}
std::string inWords(Snapping snapping) {
    return snapping == Snapping::toPixels ? " snapped" : "";
}

class Printer {
 public:
    void operator()(const FillShape& fill) {
        out_ << "fill " << inWords(fill.shape) << inWords(fill.snapping) << ' ' << inWords(fill.fill);
    }
    void operator()(const StrokeShape& stroke) {
        out_ << "stroke " << inWords(stroke.shape) << inWords(stroke.style) << inWords(stroke.snapping) << ' '
             << inWords(stroke.fill);
    }
    void operator()(const DrawShadow& shadow) {
        out_ << "shadow " << inWords(shadow.shape);
        if (shadow.stroke) out_ << inWords(*shadow.stroke);
        out_ << formatted(" blur ", shadow.radius);
        if (shadow.offset != Point{}) out_ << " moved " << inWords(shadow.offset);
        if (shadow.isOutsideOnly) out_ << " outside";
        out_ << ' ' << inWords(shadow.color);
    }
    void operator()(const DrawText& text) {
        const Font& font = text.style.font;
        out_ << "text " << inQuotes(text.text) << ' ' << inWords(text.frame)
             << formatted(" size ", font.size);
        if (font.weight == FontWeight::medium) out_ << " medium";
        if (font.weight == FontWeight::semibold) out_ << " semibold";
        if (font.weight == FontWeight::bold) out_ << " bold";
        if (font.design == FontDesign::monospaced) out_ << " monospaced";
        if (font.monospacedDigits) out_ << " tabular";
        if (text.style.lineSpacing != 0) out_ << formatted(" spacing ", text.style.lineSpacing);
        if (text.style.alignment == TextAlignment::center) out_ << " centered";
        if (text.style.alignment == TextAlignment::trailing) out_ << " trailing";
        if (text.style.lineLimit > 0) out_ << formatted(" lines ", text.style.lineLimit);
        if (text.scaleX != 1 || text.scaleY != 1)
            out_ << formatted(" scaled ", text.scaleX, ',', text.scaleY);
        out_ << ' ' << inWords(text.color);
    }
    void operator()(const DrawSymbol& symbol) {
        out_ << "symbol " << inQuotes(symbol.name) << ' ' << inWords(symbol.frame) << ' '
             << inWords(symbol.color);
    }
    void operator()(const DrawImage& image) {
        out_ << "image " << inQuotes(image.name) << ' ' << inWords(image.frame);
    }
    void operator()(const DrawPicture& picture) {
        out_ << "picture at " << inWords(picture.at) << inWords(picture.snapping);
        if (picture.opacity != 1) out_ << formatted(" opacity ", picture.opacity);
        if (picture.picture) print(picture.picture->items);
    }
    void operator()(const DrawGroup& group) {
        out_ << formatted("group opacity ", group.opacity);
        if (group.clip) out_ << " clip " << inWords(*group.clip);
        print(group.items);
    }

    // Never asked: the items that it shares are printed in its place.
    void operator()(const DrawShared&) {}

    // What is inside of an item stands below it, further in.
    void print(const std::vector<DisplayItem>& items) {
        for (const DisplayItem* item : flatItems(items)) {
            if (std::exchange(hasBegun_, true)) out_ << '\n';
            out_ << std::string(2 * static_cast<std::size_t>(depth_), ' ') << item->key << ": ";
            ++depth_;
            std::visit(*this, item->command);
            --depth_;
        }
    }
    std::string printed(const DisplayList& list) {
        print(list.items);
        return list.items.empty() ? "" : out_.str() + '\n';
    }

 private:
    std::ostringstream out_;
    int depth_ = 0;
    bool hasBegun_ = false;
};

void flatten(const std::vector<DisplayItem>& items, std::vector<const DisplayItem*>& flat) {
    for (const DisplayItem& item : items) {
        const auto* const shared = std::get_if<DrawShared>(&item.command);
        if (shared == nullptr) {
            flat.push_back(&item);
        } else if (shared->items) {
            flatten(*shared->items, flat);
        }
    }
}

}  // namespace

std::vector<const DisplayItem*> flatItems(const std::vector<DisplayItem>& items) {
    std::vector<const DisplayItem*> flat;
    flat.reserve(items.size());
    flatten(items, flat);
    return flat;
}

std::string printed(const DisplayList& list) {
    return Printer{}.printed(list);
}

}  // namespace norvane
