#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/MainQueue.h"
#include "platform/Observers.h"
#include "platform/Workspace.h"

namespace norvane {

// Opens nothing and ejects nothing, and remembers what it was to open and to eject.
class ScriptedWorkspace final : public Workspace {
 public:
    explicit ScriptedWorkspace(MainQueue& mainQueue) : mainQueue_(mainQueue) {}

    void openURL(const std::string& url) override { opened.push_back(url); }

    void unmountAndEjectDevice(const std::string& path,
                               std::function<void(std::optional<std::string> error)> completion) override {
        ejected.push_back(path);
        Ejection& ejection = underWay_[path];
        ejection.completions.push_back(std::move(completion));
        if (ejection.completions.size() > 1) return;
        ejection.end =
            mainQueue_.after(ejectionTime, [this, path = std::string(path)] { endEjection(path); });
    }
    Cancellation onDidMount(std::function<void()> observer) override {
        return mounted_.add(std::move(observer));
    }
    Cancellation onDidUnmount(std::function<void()> observer) override {
        return unmounted_.add(std::move(observer));
    }

    // A volume came or went, which changes nothing of what is listed.
    void tellMounted() { mounted_.tell(); }
    void tellUnmounted() { unmounted_.tell(); }
    // To either.
    std::size_t listeners() const { return mounted_.count() + unmounted_.count(); }

    std::vector<std::string> opened;
    // Every path asked for, in order, those included that joined an ejection under way.
    std::vector<std::string> ejected;
    // From the call to the answer.
    std::chrono::nanoseconds ejectionTime{0};
    // What goes wrong, by the path, as it is when the answer comes.
    std::map<std::string, std::string> ejectionErrors;

 private:
    struct Ejection {
        std::vector<std::function<void(std::optional<std::string>)>> completions;
        Cancellation end;
    };

    void endEjection(const std::string& path) {
        const auto ended = underWay_.extract(path);
        const auto error = ejectionErrors.find(path);
        for (const auto& completion : ended.mapped().completions)
            completion(error == ejectionErrors.end() ? std::nullopt : std::optional(error->second));
    }

    MainQueue& mainQueue_;
    std::map<std::string, Ejection> underWay_;
    Observers<> mounted_;
    Observers<> unmounted_;
};

}  // namespace norvane
