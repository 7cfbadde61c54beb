#include "platform/scripted/FixedTextRuler.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace norvane {
namespace {

bool startsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

// Breaks text into lines of at most `most` characters, at blanks where there are any. Blanks at the end of a
// line take no room.
class Wrapping {
 public:
    explicit Wrapping(double most) : most_(most) {}

    void add(char byte) {
        if (byte == '\n') {
            startLine(0);
        } else if (byte == ' ') {
            ++line_;
            word_ = 0;
        } else if (startsCharacter(byte)) {
            // The word that does not fit goes to the next line; one that fills a line is broken.
            if (static_cast<double>(line_ + 1) > most_ && inked_ > 0) startLine(word_ < line_ ? word_ : 0);
            ++line_;
            ++word_;
            if (word_ == 1) before_ = inked_;
            inked_ = line_;
        }
    }
    void finish() { startLine(0); }

    std::size_t widest() const { return widest_; }
    int lines() const { return lines_; }

 private:
    // Ends the line before the last `carried` characters, which begin the next one.
    void startLine(std::size_t carried) {
        widest_ = std::max(widest_, carried > 0 ? before_ : inked_);
        ++lines_;
        line_ = word_ = inked_ = carried;
        before_ = 0;
    }

    double most_;
    // Characters: of this line, of its last word, up to its last one that is no blank, and the same before
    // the word.
    std::size_t line_ = 0;
    std::size_t word_ = 0;
    std::size_t inked_ = 0;
    std::size_t before_ = 0;
    std::size_t widest_ = 0;
    int lines_ = 0;
};

}  // namespace

TextMetrics FixedTextRuler::measure(std::string_view text, const TextStyle& style, double maxWidth) {
    const double character = style.font.size * (style.font.weight == FontWeight::bold ? 0.7 : 0.6);
    const double most = std::max(1.0, std::floor(maxWidth / character + 1e-9));
    Wrapping wrapping(most);
    for (const char byte : text)
        wrapping.add(byte);
    wrapping.finish();
    const double lineHeight = style.font.size * 1.25;
    const int lines = style.lineLimit > 0 ? std::min(wrapping.lines(), style.lineLimit) : wrapping.lines();
    return {.size = {static_cast<double>(wrapping.widest()) * character,
                     lines * lineHeight + (lines - 1) * style.lineSpacing},
            .baseline = style.font.size,
            .lines = lines};
}

}  // namespace norvane
