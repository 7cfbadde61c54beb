#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/BackgroundQueue.h"
#include "platform/Cancellation.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/MountWatch.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/VolumeEjections.h"
#include "platform/Workspace.h"

namespace norvane {

// The desktop portal's way to open a link (org.freedesktop.portal.OpenURI), which knows the user's choice
// also from within a sandbox. Where the portal is not there, refuses or does not answer, the program that the
// user has chosen for such links is looked up (freedesktop.org, "MIME applications") and started, on the
// background queue; never by a shell.
//
// Volumes are ejected by the storage service on the system's bus.
class LinuxWorkspace final : public Workspace {
 public:
    // For the portal to take a link, which it may have to be started for. A portal that is later still opens
    // the link a second time.
    static constexpr std::chrono::milliseconds kPortalLimit = std::chrono::seconds(5);

    // Main thread. The buses and the queues outlive this.
    LinuxWorkspace(BusConnection& sessionBus, BusConnection& systemBus, MainQueue& mainQueue,
                   BackgroundQueue& backgroundQueue, const RootFolder& root,
                   std::chrono::milliseconds portalLimit = kPortalLimit);

    // What is neither `https` nor `http` nor `mailto` is for nobody, and neither is what is no URL.
    void openURL(const std::string& url) override;

    void unmountAndEjectDevice(const std::string& path,
                               std::function<void(std::optional<std::string> error)> completion) override;
    Cancellation onDidMount(std::function<void()> observer) override;
    Cancellation onDidUnmount(std::function<void()> observer) override;

    // Of the three schemes, in small letters; empty for any other text.
    static std::string_view schemeOf(std::string_view url);

    // The program and its arguments, where `exec` is a desktop entry's command line. A command line that has
    // no place for links has it at the end. Empty where it cannot be understood.
    static std::vector<std::string> commandFor(const char* exec, const std::string& url);

 private:
    BusConnection& bus_;
    BackgroundQueue& backgroundQueue_;
    const std::chrono::milliseconds portalLimit_;
    std::map<std::uint64_t, Cancellation> calls_;
    std::uint64_t callCount_ = 0;
    VolumeEjections ejections_;
    MountWatch mounts_;
};

}  // namespace norvane
