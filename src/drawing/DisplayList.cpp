#include "drawing/DisplayList.h"

#include <iomanip>
#include <locale>
#include <sstream>
#include <string_view>

namespace norvane {
namespace {

class Printer {
 public:
    Printer() {
        out_.imbue(std::locale::classic());
        out_ << std::setprecision(6);
    }

    void operator()(const FillShape& fill) {
        out_ << "fill " << rect(fill.shape.rect) << radius(fill.shape) << color(fill.color);
    }
    void operator()(const StrokeShape& stroke) {
        out_ << "stroke " << rect(stroke.shape.rect) << radius(stroke.shape) << " width " << stroke.width
             << color(stroke.color);
    }
    void operator()(const DrawText& text) {
        const Font& font = text.style.font;
        out_ << "text " << quoted(text.text) << ' ' << rect(text.frame) << " size " << font.size;
        if (font.weight == FontWeight::medium) out_ << " medium";
        if (font.weight == FontWeight::semibold) out_ << " semibold";
        if (font.weight == FontWeight::bold) out_ << " bold";
        if (font.design == FontDesign::monospaced) out_ << " monospaced";
        if (font.monospacedDigits) out_ << " tabular";
        if (text.style.lineSpacing != 0) out_ << " spacing " << text.style.lineSpacing;
        if (text.style.alignment == TextAlignment::center) out_ << " centered";
        if (text.style.alignment == TextAlignment::trailing) out_ << " trailing";
        if (text.condense != 1) out_ << " condensed " << text.condense;
        out_ << color(text.color);
    }

    std::string printed(const DisplayList& list) {
        for (const DisplayItem& item : list.items) {
            out_ << item.key << ": ";
            std::visit(*this, item.command);
            out_ << '\n';
        }
        return out_.str();
    }

 private:
    // On one line, whatever the text holds.
    static std::string quoted(std::string_view text) {
        std::string quoted = "\"";
        for (const char c : text) {
            if (c == '"' || c == '\\') quoted += '\\';
            quoted += c == '\n' ? std::string("\\n") : std::string(1, c);
        }
        return quoted + '"';
    }
    std::string formatted(auto&&... parts) const {
        std::ostringstream text;
        text.imbue(std::locale::classic());
        text << std::setprecision(6);
        (text << ... << parts);
        return text.str();
    }
    std::string rect(const Rect& r) const {
        return formatted(r.origin.x, ",", r.origin.y, " ", r.size.width, "x", r.size.height);
    }
    std::string radius(const RoundedRect& shape) const {
        return shape.radius == 0 ? "" : formatted(" radius ", shape.radius);
    }
    std::string color(const Color& c) const {
        return formatted(" rgba(", c.red, ",", c.green, ",", c.blue, ",", c.alpha, ")");
    }

    std::ostringstream out_;
};

}  // namespace

std::string printed(const DisplayList& list) {
    return Printer{}.printed(list);
}

}  // namespace norvane
