#pragma once

#include <nlohmann/json.hpp>
#include <string_view>

namespace norvane {

// Objects keep the order in which they are written.
using Json = nlohmann::ordered_json;

// One JSON text. Throws an `Objection` where it is malformed, names a key twice in one object, is nested
// deeper than anybody needs, or has an object of more members than anybody needs.
Json parsedJson(std::string_view text);

// On one line; bytes that are not UTF-8 as replacement characters.
std::string printedJson(const Json& value);

}  // namespace norvane
