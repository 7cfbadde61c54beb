#include "dashboard/FeedbackAddress.h"

namespace norvane {
namespace {

bool isPlainPart(std::string_view part) {
    constexpr std::string_view kAllowed =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.-_+";
    return !part.empty() && part.find_first_not_of(kAllowed) == std::string_view::npos;
}

}  // namespace

std::optional<std::string> feedbackURL(std::string_view address) {
    const std::size_t at = address.find('@');
    if (at == std::string_view::npos) return std::nullopt;
    if (!isPlainPart(address.substr(0, at)) || !isPlainPart(address.substr(at + 1))) return std::nullopt;
    return "mailto:" + std::string(address);
}

}  // namespace norvane
