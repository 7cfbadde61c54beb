#pragma once

#include <functional>
#include <optional>
#include <string>

namespace norvane {

// Whether the program is started when the user logs in, `SMAppService.mainApp`: a setting of the operating
// system, which anybody may change there at any time. Main thread only; the calls return at once, and each
// completion is called once, on the main queue, or not at all where the process ends first.
class LoginItem {
 public:
    // What `status` completes with where the program is started at login.
    static constexpr int kEnabled = 1;
    static constexpr int kNotRegistered = 0;

    virtual ~LoginItem() = default;

    virtual void status(std::function<void(int status)> completion) = 0;
    // `register` and `unregister`. They complete with a description of the error, valid UTF-8, or with none
    // where the system has it as asked.
    virtual void registerItem(std::function<void(std::optional<std::string> error)> completion) = 0;
    virtual void unregisterItem(std::function<void(std::optional<std::string> error)> completion) = 0;
};

}  // namespace norvane
