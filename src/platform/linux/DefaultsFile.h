#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "platform/DefaultsValue.h"

namespace norvane {

// The text of the defaults file. In a group `[defaults]` each line `key=value` holds one key: `true` or
// `false`, a number, or a quoted string with the escapes of JSON (RFC 8259). A line that is none of these, or
// is not UTF-8, counts as not there; of several lines for one key the last good one counts. Lines that begin
// with `#` or `;` are comments, and other groups are somebody else's.

using DefaultsMap = std::map<std::string, DefaultsValue, std::less<>>;
// No value removes the key.
using DefaultsChanges = std::map<std::string, std::optional<DefaultsValue>, std::less<>>;

// The keys and values of any text, however damaged.
DefaultsMap parseDefaults(std::string_view text);

// The text with these changes, and every other line as it was. A key keeps its place; a new one comes at the
// end of the group. A key that no line could hold is left out.
std::string rewriteDefaults(std::string_view text, const DefaultsChanges& changes);

// Whether both hold the same under the same keys. A number that is none is the same as itself.
bool holdSame(const DefaultsMap& one, const DefaultsMap& other);

// The value as it is read back after it was written: invalid UTF-8 in a string is replaced.
DefaultsValue storable(DefaultsValue value);

}  // namespace norvane
