#include "platform/scripted/FixedTextRuler.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace norvane {
namespace {

bool startsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

// Breaks text into lines of at most `most` characters, at blanks where there are any.
class Wrapping {
 public:
    explicit Wrapping(double most) : most_(most) {}

    void add(char byte) {
        if (byte == '\n') {
            endLine(line_);
            line_ = word_ = 0;
            return;
        }
        if (!startsCharacter(byte)) return;
        if (static_cast<double>(line_ + 1) > most_ && line_ > 0 && byte != ' ') {
            // The word that does not fit goes to the next line; one that fills the line is broken.
            const std::size_t carried = word_ < line_ ? word_ : 0;
            endLine(line_ - carried);
            line_ = word_ = carried;
        }
        ++line_;
        word_ = byte == ' ' ? 0 : word_ + 1;
    }
    void finish() { endLine(line_); }

    std::size_t widest() const { return widest_; }
    int lines() const { return lines_; }

 private:
    void endLine(std::size_t length) {
        widest_ = std::max(widest_, length);
        ++lines_;
    }

    double most_;
    std::size_t line_ = 0;
    std::size_t word_ = 0;
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
    return {.size = {static_cast<double>(wrapping.widest()) * character,
                     wrapping.lines() * lineHeight + (wrapping.lines() - 1) * style.lineSpacing},
            .baseline = style.font.size,
            .lines = wrapping.lines()};
}

}  // namespace norvane
