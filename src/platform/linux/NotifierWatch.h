#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "platform/linux/BusConnection.h"
#include "platform/Observers.h"

namespace norvane {

// Whether some panel on the desktop shows notifier items ("StatusNotifierItem", freedesktop.org): whether
// there is a watcher (org.kde.StatusNotifierWatcher), and whether it knows of such a panel. Followed as it
// changes. Main thread only.
class NotifierWatch {
 public:
    enum class State {
        // The bus, or an answer, is being waited for; never for long.
        unknown,
        absent,
        present,
    };

    // The name of the watcher and of its interface, and where it is.
    static constexpr const char* kWatcher = "org.kde.StatusNotifierWatcher";
    static constexpr const char* kWatcherPath = "/StatusNotifierWatcher";
    // What a watcher has to answer: somebody waits for the status item meanwhile.
    static constexpr std::chrono::milliseconds kLimit = std::chrono::seconds(2);

    // The session bus, which outlives this.
    explicit NotifierWatch(BusConnection& sessionBus, std::chrono::milliseconds limit = kLimit);
    NotifierWatch(const NotifierWatch&) = delete;
    NotifierWatch& operator=(const NotifierWatch&) = delete;

    State state() const { return state_; }
    // Another number whenever the watcher may be another one, which knows nothing of the items of before. One
    // that takes the place of another at once does so without seeming absent.
    unsigned generation() const { return generation_; }
    // Told after either has changed.
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) {
        return changed_.add(std::move(observer));
    }

 private:
    void connectionChanged(BusConnection::State state);
    void begin();
    using Limit = std::optional<std::chrono::milliseconds>;
    void ask(Limit limit);
    void propertiesChanged(GVariant* parameters);
    void learn(GVariant* isHostRegistered);
    void know(State state);

    BusConnection& bus_;
    const std::chrono::milliseconds limit_;
    State state_ = State::unknown;
    unsigned generation_ = 0;
    Observers<> changed_;
    Cancellation owner_;
    Cancellation registered_;
    Cancellation unregistered_;
    Cancellation properties_;
    Cancellation connection_;
    Cancellation question_;
};

}  // namespace norvane
