#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// Where the users' letters go.
inline constexpr std::string_view kFeedbackAddress = "feedback@norvane.invalid";

// The URL that begins a letter to that address (RFC 6068); none where the address cannot stand in one: it is
// to be two parts around an @, of letters, digits and .-_+ alone.
std::optional<std::string> feedbackURL(std::string_view address);

}  // namespace norvane
