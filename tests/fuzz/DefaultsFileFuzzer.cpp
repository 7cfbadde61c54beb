#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/linux/DefaultsFile.h"
#include "Property.h"

namespace norvane {
namespace {

constexpr const char* kNewKey = "norvaneNewKey";

DefaultsChanges changesOf(const DefaultsMap& map) {
    return {map.begin(), map.end()};
}

bool hasControls(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

// Whatever is written under a new key is read back, beside everything that was there.
void checkWriting(std::string_view text, const DefaultsMap& map, const DefaultsValue& value) {
    DefaultsMap want = map;
    want.insert_or_assign(kNewKey, storable(value));
    const DefaultsChanges changes{{kNewKey, value}};
    const std::string written = rewriteDefaults(text, changes);
    require(holdSame(parseDefaults(written), want), "what is written is read back, and nothing else changes");
    require(rewriteDefaults(written, changes) == written, "writing the same again changes no byte");
    require(holdSame(parseDefaults(rewriteDefaults(written, {{kNewKey, std::nullopt}})),
                     map.contains(kNewKey) ? parseDefaults(rewriteDefaults(text, {{kNewKey, std::nullopt}}))
                                           : map),
            "removing it leaves what was there");
}

}  // namespace

void check(std::string_view text) {
    const DefaultsMap map = parseDefaults(text);
    require(rewriteDefaults(text, {}) == text, "without changes no byte changes");
    require(holdSame(parseDefaults(rewriteDefaults(text, changesOf(map))), map),
            "writing what was read changes nothing");

    DefaultsMap writable = map;
    std::erase_if(writable, [](const auto& entry) { return hasControls(entry.first); });
    const std::string fresh = rewriteDefaults({}, changesOf(map));
    require(holdSame(parseDefaults(fresh), writable), "what was read can be written into a new file");
    require(rewriteDefaults({}, changesOf(parseDefaults(fresh))) == fresh, "and printed the same again");

    DefaultsChanges removals;
    for (const auto& [key, value] : map) {
        require(!key.empty() && key.find('=') == std::string::npos, "a key can be told from its value");
        removals.emplace(key, std::nullopt);
    }
    require(parseDefaults(rewriteDefaults(text, removals)).empty(), "what was removed is gone");

    const std::string all(text);
    checkWriting(text, map, all);
    checkWriting(text, map, true);
    checkWriting(text, map, static_cast<double>(text.size()) / 3);

    const std::string key = all.substr(0, all.find('\n'));
    const DefaultsMap changed = parseDefaults(rewriteDefaults(text, {{key, false}}));
    DefaultsMap want = map;
    if (changed.contains(key)) want.insert_or_assign(key, false);
    require(holdSame(changed, want), "a key of any bytes is written or left out, and nothing else changes");
}

}  // namespace norvane
