#include "Environment.h"

#include <unistd.h>

#include <cstddef>
#include <string_view>

namespace norvane {

Environment Environment::inherited() {
    Environment environment;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t end = text.find('=');
        if (end == std::string_view::npos) continue;
        environment.values_.emplace(text.substr(0, end), text.substr(end + 1));
    }
    return environment;
}

Environment Environment::with(const std::string& name, const std::string& value) const {
    Environment changed = *this;
    changed.values_[name] = value;
    return changed;
}

Environment Environment::without(const std::string& name) const {
    Environment changed = *this;
    changed.values_.erase(name);
    return changed;
}

std::vector<std::string> Environment::entries() const {
    std::vector<std::string> entries;
    entries.reserve(values_.size());
    for (const auto& [name, value] : values_) {
        std::string entry = name;
        entries.push_back(entry.append("=").append(value));
    }
    return entries;
}

}  // namespace norvane
