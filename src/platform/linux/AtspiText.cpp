#include "platform/linux/AtspiText.h"

#include <glib.h>
#include <algorithm>
#include <memory>

namespace norvane {

AtspiText::AtspiText(const std::string& text) {
    glong count = 0;
    const std::unique_ptr<gunichar, decltype(&g_free)> characters(
        g_utf8_to_ucs4(text.c_str(), -1, nullptr, &count, nullptr), &g_free);
    if (!characters) return;
    characters_.assign(characters.get(), characters.get() + count);
    length_ = static_cast<int>(count);
}

AtspiText::Unit AtspiText::unitOfGranularity(std::uint32_t granularity) {
    return granularity == 0 ? Unit::character : granularity == 1 ? Unit::word : Unit::whole;
}

AtspiText::Unit AtspiText::unitOfBoundary(std::uint32_t boundary) {
    return boundary == 0 ? Unit::character : boundary <= 2 ? Unit::word : Unit::whole;
}

std::string AtspiText::part(int from, int to) const {
    return piece(from, to < 0 ? length_ : to).text;
}

int AtspiText::character(int offset) const {
    if (offset < 0 || offset >= length_) return 0;
    return static_cast<int>(characters_[static_cast<std::size_t>(offset)]);
}

AtspiText::Piece AtspiText::at(int offset, Unit unit) const {
    if (offset < 0 || offset >= length_) return {"", length_, length_};
    if (unit == Unit::character) return piece(offset, offset + 1);
    if (unit == Unit::whole) return piece(0, length_);
    int from = offset;
    while (from > 0 && !beginsWord(from))
        --from;
    int to = offset + 1;
    while (to < length_ && !beginsWord(to))
        ++to;
    return piece(from, to);
}

AtspiText::Piece AtspiText::before(int offset, Unit unit) const {
    const int from = offset >= length_ ? length_ : at(offset, unit).from;
    return from > 0 ? at(from - 1, unit) : Piece{};
}

AtspiText::Piece AtspiText::after(int offset, Unit unit) const {
    return at(std::max(at(offset, unit).to, 0), unit);
}

AtspiText::Piece AtspiText::piece(int from, int to) const {
    from = std::clamp(from, 0, length_);
    to = std::clamp(to, from, length_);
    const std::unique_ptr<gchar, decltype(&g_free)> text(
        g_ucs4_to_utf8(reinterpret_cast<const gunichar*>(characters_.data()) + from, to - from, nullptr,
                       nullptr, nullptr),
        &g_free);
    return {text ? text.get() : "", from, to};
}

bool AtspiText::beginsWord(int offset) const {
    return !isSpace(offset) && isSpace(offset - 1);
}

bool AtspiText::isSpace(int offset) const {
    return offset < 0 || g_unichar_isspace(characters_[static_cast<std::size_t>(offset)]) != FALSE;
}

}  // namespace norvane
