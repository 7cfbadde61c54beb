#pragma once

#include <array>
#include <functional>
#include <string>

#include "platform/Cancellation.h"
#include "platform/linux/BusConnection.h"
#include "platform/Observers.h"

namespace norvane {

// Whether a lock screen hides the user's session: the session manager's hint on the system bus
// ("org.freedesktop.login1", systemd and elogind) and the screen lockers on the session bus, each of which
// alone is enough. Who is not there, does not answer or answers nonsense has locked nothing. Nothing is
// started for it, nothing waits, and nothing runs while nothing changes. Main thread only.
class SessionLock {
 public:
    // Both outlive it.
    SessionLock(BusConnection& sessionBus, BusConnection& systemBus);
    ~SessionLock();
    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;

    bool isLocked() const { return isLocked_; }
    // Told when that has changed.
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) {
        return changed_.add(std::move(observer));
    }

 private:
    // Of one screen locker, the conversation with it.
    struct Locker {
        bool isActive = false;
        std::array<Cancellation, 2> signals;  // one for each of its paths
        Cancellation owner;
        Cancellation question;
    };
    static constexpr std::size_t kLockers = 5;

    void askLocker(std::size_t locker, std::size_t path);
    void know(std::size_t locker, bool isActive);

    void findSession();
    void findSessionOfProcess();
    void follow(std::string path);
    void askHint();
    void hintChanged(GVariant* parameters);
    void loseSession();
    void know(bool isHinted);

    void update();

    BusConnection& sessionBus_;
    BusConnection& systemBus_;
    std::array<Locker, kLockers> lockers_;
    Cancellation sessionBusState_;

    std::string session_;  // the path of the one that is followed, or was last
    bool isHinted_ = false;
    Cancellation manager_;
    Cancellation properties_;
    Cancellation question_;
    Cancellation systemBusState_;

    bool isLocked_ = false;
    Observers<> changed_;
};

}  // namespace norvane
