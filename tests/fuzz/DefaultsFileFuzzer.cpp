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
    for (const DefaultsValue& different :
         {DefaultsValue(std::string(text) + '.'), DefaultsValue(std::nan("")), DefaultsValue(false)}) {
        DefaultsMap other = want;
        other.insert_or_assign(kNewKey, different);
        require(!holdSame(want, other), "another value is noticed");
        std::swap(want, other);
        require(!holdSame(want, other), "whichever of them is looked at first");
        std::swap(want, other);
    }
    DefaultsMap renamed = want;
    auto entry = renamed.extract(kNewKey);
    entry.key() += '.';
    renamed.insert(std::move(entry));
    require(!holdSame(want, renamed), "so is another key");
    const DefaultsChanges changes{{kNewKey, value}};
    const std::string written = rewriteDefaults(text, changes);
    require(holdSame(parseDefaults(written), want), "what is written is read back, and nothing else changes");
    require(rewriteDefaults(written, changes) == written, "writing the same again changes no byte");
    require(holdSame(parseDefaults(rewriteDefaults(written, {{kNewKey, std::nullopt}})),
                     map.contains(kNewKey) ? parseDefaults(rewriteDefaults(text, {{kNewKey, std::nullopt}}))
                                           : map),
            "removing it leaves what was there");
}

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

}  // namespace
}  // namespace norvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    norvane::check(norvane::textOf(data, size));
    return 0;
}
