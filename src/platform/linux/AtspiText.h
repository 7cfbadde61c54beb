#pragma once

#include <cstdint>
#include <string>

namespace norvane {

// A text of one line as assistive technologies read it, piece by piece. Offsets count characters.
class AtspiText {
 public:
    // Valid UTF-8, as all that is shown is.
    explicit AtspiText(const std::string& text);

    struct Piece {
        std::string text;
        int from = 0;
        int to = 0;

        bool operator==(const Piece&) const = default;
    };
    enum class Unit { character, word, whole };
    // By the numbers of AT-SPI's granularities, and of its older boundaries.
    static Unit unitOfGranularity(std::uint32_t granularity);
    static Unit unitOfBoundary(std::uint32_t boundary);

    int length() const { return length_; }
    // The characters from one offset up to another; to the end where that is negative. What is beyond the
    // text is cut off.
    std::string part(int from, int to) const;
    // The code point there; 0 beyond the text.
    int character(int offset) const;
    // The piece that the offset is in, or the next before or after it; empty where there is none. A word
    // reaches to the next one.
    Piece at(int offset, Unit unit) const;
    Piece before(int offset, Unit unit) const;
    Piece after(int offset, Unit unit) const;

 private:
    Piece piece(int from, int to) const;
    bool beginsWord(int offset) const;
    bool isSpace(int offset) const;

    std::u32string characters_;
    int length_ = 0;
};

}  // namespace norvane
