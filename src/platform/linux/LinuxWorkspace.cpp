#include "platform/linux/LinuxWorkspace.h"

#include <gio/gdesktopappinfo.h>
#include <signal.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <memory>
#include <utility>

#include "platform/linux/GObjectPointer.h"
#include "platform/linux/WellKnownNames.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr const char* kOpenURI = "org.freedesktop.portal.OpenURI";

constexpr std::array<std::string_view, 3> kSchemes{"https", "http", "mailto"};
// Far more than any link of ours, and less than the kernel takes as one argument.
constexpr std::size_t kLongestURL = 64 * 1024;

char inSmallLetters(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isControl(char each) {
    return static_cast<unsigned char>(each) < ' ' || each == '\x7f';
}

// One argument with its field codes replaced; the link counts once it has found its place.
std::string expanded(std::string_view argument, const std::string& url, bool& hasPlace) {
    std::string result;
    for (std::size_t k = 0; k < argument.size(); ++k) {
        if (argument[k] != '%' || k + 1 == argument.size()) {
            result += argument[k];
            continue;
        }
        switch (argument[++k]) {
            case 'u':
            case 'U':
            case 'f':
            case 'F':
                result += url;
                hasPlace = true;
                break;
            case '%':
                result += '%';
                break;
            default:
                break;  // an icon, a name: nothing that a link needs
        }
    }
    return result;
}

// In the new process, before the program runs: only calls that are safe after a fork of one thread of many.
// Signals that are blocked or ignored here stay so in a program, unless they are set free for it. And a
// Control-C in our terminal is none of its business.
void setFree(gpointer) {
    struct sigaction usual {};
    usual.sa_handler = SIG_DFL;
    sigaction(SIGPIPE, &usual, nullptr);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    setsid();
}

// May wait for the disk. GLib's own way of launching would take a connection to the bus that ends the process
// with the bus.
void startHandler(const std::string& url) {
    const std::string scheme(LinuxWorkspace::schemeOf(url));
    const GObjectPointer<GAppInfo> handler(g_app_info_get_default_for_uri_scheme(scheme.c_str()));
    if (!handler || !G_IS_DESKTOP_APP_INFO(handler.get())) return;
    // It would want a terminal around it, and which one nobody has said.
    if (g_desktop_app_info_get_boolean(G_DESKTOP_APP_INFO(handler.get()), "Terminal") != FALSE) return;
    std::vector<std::string> command =
        LinuxWorkspace::commandFor(g_app_info_get_commandline(handler.get()), url);
    if (command.empty()) return;
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& each : command)
        arguments.push_back(each.data());
    arguments.push_back(nullptr);
    // The new process is no child of ours by the time that the call returns, so that nobody has to wait for
    // its end. Our standard output is for our lines alone.
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_STDOUT_TO_DEV_NULL);
    g_spawn_async(nullptr, arguments.data(), nullptr, flags, setFree, nullptr, nullptr, nullptr);
}

}  // namespace

LinuxWorkspace::LinuxWorkspace(BusConnection& sessionBus, BusConnection& systemBus, MainQueue& mainQueue,
                               BackgroundQueue& backgroundQueue, const RootFolder& root,
                               std::chrono::milliseconds portalLimit)
    : bus_(sessionBus),
      backgroundQueue_(backgroundQueue),
      portalLimit_(portalLimit),
      ejections_(systemBus, mainQueue, backgroundQueue, root),
      mounts_(mainQueue, backgroundQueue, root) {}

void LinuxWorkspace::openURL(const std::string& url) {
    if (schemeOf(url).empty()) return;
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    constexpr const char* kNoWindow = "";
    const std::uint64_t number = callCount_++;
    auto call = bus_.call({.name = kPortalName,
                           .path = kPortalPath,
                           .interface = kOpenURI,
                           .method = "OpenURI",
                           .parameters = g_variant_new("(ssa{sv})", kNoWindow, url.c_str(), &options),
                           .answerType = G_VARIANT_TYPE("(o)"),
                           .limit = portalLimit_},
                          [this, number, url](GVariant* answer, const GError*) {
                              const auto done = calls_.extract(number);
                              if (answer != nullptr) return;
                              auto shared = std::make_shared<const std::string>(url);
                              backgroundQueue_.async([shared = std::move(shared)] { startHandler(*shared); });
                          });
    // The answer never comes from within the call.
    calls_.emplace(number, std::move(call));
}

void LinuxWorkspace::unmountAndEjectDevice(const std::string& path,
                                           std::function<void(std::optional<std::string> error)> completion) {
    ejections_.begin(path, std::move(completion));
}

Cancellation LinuxWorkspace::onDidMount(std::function<void()> observer) {
    return mounts_.onDidMount(std::move(observer));
}

Cancellation LinuxWorkspace::onDidUnmount(std::function<void()> observer) {
    return mounts_.onDidUnmount(std::move(observer));
}

std::string_view LinuxWorkspace::schemeOf(std::string_view url) {
    if (url.size() > kLongestURL || std::any_of(url.begin(), url.end(), isControl)) return {};
    if (repairedUtf8(url) != url) return {};
    for (const std::string_view scheme : kSchemes) {
        if (url.size() <= scheme.size() + 1 || url[scheme.size()] != ':') continue;
        const bool isIt = std::equal(scheme.begin(), scheme.end(), url.begin(),
                                     [](char small, char any) { return small == inSmallLetters(any); });
        if (isIt) return scheme;
    }
    return {};
}

std::vector<std::string> LinuxWorkspace::commandFor(const char* exec, const std::string& url) {
    gchar** parts = nullptr;
    if (exec == nullptr || g_shell_parse_argv(exec, nullptr, &parts, nullptr) == FALSE) return {};
    const std::unique_ptr<gchar*, decltype(&g_strfreev)> owner(parts, &g_strfreev);
    std::vector<std::string> command;
    bool hasPlace = false;
    for (gchar** each = parts; *each != nullptr; ++each) {
        std::string argument = expanded(*each, url, hasPlace);
        // A field code that stands for nothing is no argument, while an empty one in quotes is.
        if (argument.empty() && **each != '\0') continue;
        command.push_back(std::move(argument));
    }
    if (command.empty() || command.front().empty()) return {};
    if (!hasPlace) command.push_back(url);
    return command;
}

}  // namespace norvane
