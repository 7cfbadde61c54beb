#include "dashboard/ShownVolumeName.h"

#include <cstddef>

#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// The bytes of a character by its first one, in well-formed UTF-8.
std::size_t lengthOf(unsigned char lead) {
    if (lead < 0x80) return 1;
    if (lead < 0xE0) return 2;
    return lead < 0xF0 ? 3 : 4;
}

char32_t valueOf(std::string_view character) {
    const auto lead = static_cast<unsigned char>(character.front());
    char32_t value = character.size() == 1 ? lead : lead & (0x7FU >> character.size());
    for (const char byte : character.substr(1))
        value = value << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    return value;
}

bool breaksLine(char32_t c) {
    return (c >= '\t' && c <= '\r') || c == 0x85 || c == 0x2028 || c == 0x2029;
}
bool isControl(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}
// What takes no room and says nothing, so that two names with and without it would look alike.
bool isInvisible(char32_t c) {
    return c == 0xAD || c == 0x200B || c == 0x2060 || c == 0xFEFF || (c >= 0xE0000 && c <= 0xE007F);
}
// Marks that stand above or below the letter before them, as many as there are.
bool isMark(char32_t c) {
    return (c >= 0x300 && c <= 0x36F) || (c >= 0x1AB0 && c <= 0x1AFF) || (c >= 0x1DC0 && c <= 0x1DFF) ||
           (c >= 0x20D0 && c <= 0x20FF) || (c >= 0xFE20 && c <= 0xFE2F);
}
// No writing puts more of them on a letter; a name may put them through the rows above and below.
constexpr int kMostMarks = 4;

bool turnsDirection(char32_t c) {
    return c == 0x61C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069);
}

}  // namespace

std::string shownVolumeName(std::string_view name) {
    const std::string repaired = repairedUtf8(name);
    std::string shown;
    shown.reserve(repaired.size());
    int marks = 0;
    for (std::string_view rest = repaired; !rest.empty();) {
        const std::string_view character = rest.substr(0, lengthOf(static_cast<unsigned char>(rest.front())));
        rest.remove_prefix(character.size());
        const char32_t value = valueOf(character);
        if (turnsDirection(value) || isInvisible(value)) continue;
        marks = isMark(value) ? marks + 1 : 0;
        if (marks > kMostMarks) continue;
        shown += breaksLine(value) ? " " : isControl(value) ? kReplacement : character;
    }
    return shown;
}

std::string shownVolumeName(const ExternalVolume& volume) {
    const std::string name = shownVolumeName(volume.name);
    if (name.find_first_not_of(' ') != std::string::npos) return name;
    return shownVolumeName(VolumeURL(volume.url, std::nullopt).lastPathComponent());
}

}  // namespace norvane
