#include "dashboard/ShownVolumeName.h"

#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

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
    std::string shown;
    shown.reserve(name.size());
    int marks = 0;
    while (!name.empty()) {
        const auto [value, bytes] = takeUtf8Character(name);
        if (turnsDirection(value) || isInvisible(value)) continue;
        marks = isMark(value) ? marks + 1 : 0;
        if (marks > kMostMarks) continue;
        shown += breaksLine(value) ? " " : isControl(value) ? kReplacement : bytes;
    }
    return shown;
}

std::string shownVolumeName(const ExternalVolume& volume) {
    std::string name = shownVolumeName(volume.name);
    if (name.find_first_not_of(' ') != std::string::npos) return name;
    return shownVolumeName(VolumeURL(volume.url, std::nullopt).lastPathComponent());
}

}  // namespace norvane
