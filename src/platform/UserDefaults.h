#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "platform/Cancellation.h"
#include "platform/DefaultsValue.h"

namespace norvane {

// The per-user defaults store. A write is seen by the next read and outlives the process; making it durable
// goes on behind the call, which never waits for a disk.
class UserDefaults {
 public:
    virtual ~UserDefaults() = default;

    // Any thread. A single atomic read; no value where the key is missing or could not be read.
    virtual std::optional<DefaultsValue> objectForKey(std::string_view key) const = 0;

    // Main thread only. `setObject:forKey:`.
    virtual void setObject(std::string_view key, DefaultsValue value) = 0;
    // Main thread only. Does nothing where the key is missing.
    virtual void removeObjectForKey(std::string_view key) = 0;

    // `NSUserDefaultsDidChangeNotification`: told in a later turn of the main queue, once for all the writes
    // of this process and the changes from outside up to then. Main thread only.
    [[nodiscard]] virtual Cancellation onDidChange(std::function<void()> observer) = 0;
};

}  // namespace norvane
