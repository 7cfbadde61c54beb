#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/linux/DefaultsFile.h"
#include "platform/MainQueue.h"
#include "platform/Observers.h"
#include "platform/UserDefaults.h"

namespace norvane {

// The defaults store, in a file that people and other programs may edit while this process runs. Reads come
// from memory. A thread of its own writes the file and notices when somebody else did; nobody ever waits for
// it but `synchronize` and the destructor. What cannot be written lives as long as the process, and is tried
// again together with the next write.
class LinuxUserDefaults final : public UserDefaults {
 public:
    // Main thread. Reads the file once, if it is there. The main queue outlives the store.
    LinuxUserDefaults(MainQueue& mainQueue, std::string path);
    // Waits until everything has been written, at most `kLongestGoodbye`: a disk that hangs must not keep the
    // process from ending.
    ~LinuxUserDefaults() override;
    LinuxUserDefaults(const LinuxUserDefaults&) = delete;
    LinuxUserDefaults& operator=(const LinuxUserDefaults&) = delete;

    std::optional<DefaultsValue> objectForKey(std::string_view key) const override;
    void setObject(std::string_view key, DefaultsValue value) override;
    void removeObjectForKey(std::string_view key) override;
    // Observers are told in a later turn of the main queue, once for all the changes up to then.
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) override;

    static constexpr std::chrono::seconds kLongestGoodbye{2};

    // Waits until what was set so far has been tried, at most this long. Whether all of it is in the file.
    bool synchronize(std::chrono::milliseconds atMost = kLongestGoodbye);

    // Where the defaults of the user of this process are, in the folder that the desktop
    // sets aside for settings ("XDG Base Directory", freedesktop.org); empty if that user has no home.
    static std::string defaultPath();
    // The same from the two variables, either of which may be null. Relative ones count as not set.
    static std::string pathIn(const char* xdgConfigHome, const char* home);

 private:
    struct State;

    void change(std::string_view key, std::optional<DefaultsValue> value);

    std::shared_ptr<Observers<>> observers_ = std::make_shared<Observers<>>();
    std::shared_ptr<State> state_;
};

}  // namespace norvane
