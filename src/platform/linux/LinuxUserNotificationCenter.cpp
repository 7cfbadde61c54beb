#include "platform/linux/LinuxUserNotificationCenter.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "platform/linux/GVariantPointer.h"
#include "platform/linux/NotificationText.h"
#include "platform/linux/WellKnownNames.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr const char* kServer = "org.freedesktop.Notifications";
constexpr const char* kServerPath = "/org/freedesktop/Notifications";

constexpr const char* kApplicationName = "Norvane";
// The icon's name, and the desktop file's without its ending: by that a user finds us in the settings.
constexpr const char* kDesktopName = "norvane";

using ErrorCompletion = std::function<void(std::optional<std::string>)>;

bool isListed(GVariant* answer, const char* word) {
    const GVariantPointer list(g_variant_get_child_value(answer, 0));
    GVariantIter words;
    g_variant_iter_init(&words, list.get());
    bool isFound = false;
    const gchar* each = nullptr;
    while (!isFound && g_variant_iter_next(&words, "&s", &each))
        isFound = g_str_equal(each, word) != FALSE;
    return isFound;
}

bool isYes(GVariant* answer) {
    gboolean isTrue = FALSE;
    g_variant_get(answer, "(b)", &isTrue);
    return isTrue != FALSE;
}

// Whether a server that gave this error may still do other things: it is there, but knows the method not, or
// does not do it right.
bool isAboutTheMethodAlone(const GError* error) {
    return g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD) ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_INTERFACE) ||
           g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_FAILED) ||
           g_error_matches(error, G_IO_ERROR, G_IO_ERROR_DBUS_ERROR) ||
           // An answer of another type.
           g_error_matches(error, G_IO_ERROR, G_IO_ERROR_INVALID_ARGUMENT);
}

// The arguments of `Notify`. The notification replaces no other one, offers nothing to press, and stays as
// long as the server likes.
GVariant* argumentsOfNotify(const NotificationContent& content, bool takesMarkup) {
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE_VARDICT);
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(kDesktopName));
    constexpr guchar kNormalUrgency = 1;
    g_variant_builder_add(&hints, "{sv}", "urgency", g_variant_new_byte(kNormalUrgency));
    if (content.sound == NotificationSound::defaultSound) {
        g_variant_builder_add(&hints, "{sv}", "sound-name", g_variant_new_string("message-new-instant"));
    }
    const std::string title = repairedUtf8(content.title);
    const std::string body = repairedUtf8(takesMarkup ? escapedMarkup(content.body) : content.body);
    constexpr guint32 kReplacesNone = 0;
    constexpr gint32 kServersTimeout = -1;
    return g_variant_new("(susssasa{sv}i)", kApplicationName, kReplacesNone, kDesktopName, title.c_str(),
                         body.c_str(), nullptr, &hints, kServersTimeout);
}

}  // namespace

// The conversation with the server. Main thread only.
class LinuxUserNotificationCenter::Server {
 public:
    Server(MainQueue& mainQueue, BusConnection& bus, const Limits& limits);

    void add(NotificationRequest request, ErrorCompletion completion);
    void askForLeave(std::function<void(bool)> completion);
    void askForStatus(std::function<void(NotificationAuthorization)> completion);

 private:
    struct Delivery {
        NotificationRequest request;
        ErrorCompletion completion;
    };
    using DeliveryPointer = std::shared_ptr<Delivery>;

    void due(DeliveryPointer delivery);
    void askForCapabilities();
    void notify(const DeliveryPointer& delivery);

    // Keeps what is under way until it is done: a delay, a call. Going away, this ends it.
    template <typename Begin>
    void keep(Begin begin) {
        const std::uint64_t number = stepCount_++;
        // Steps are never done before `begin` has returned.
        steps_.emplace(number, begin([this, number] { return steps_.extract(number); }));
    }

    MainQueue& mainQueue_;
    BusConnection& bus_;
    const Limits limits_;
    Cancellation owner_;
    Cancellation connection_;

    std::map<std::uint64_t, Cancellation> steps_;
    std::uint64_t stepCount_ = 0;

    // Of the server that owns the name now, once it has told.
    std::optional<bool> takesMarkup_;
    Cancellation question_;
    // What is due and waits for the answer; empty while nobody asks.
    std::vector<DeliveryPointer> due_;
};

LinuxUserNotificationCenter::Server::Server(MainQueue& mainQueue, BusConnection& bus, const Limits& limits)
    : mainQueue_(mainQueue), bus_(bus), limits_(limits) {
    owner_ = bus.onOwnerChange(kServer, [this](bool) { takesMarkup_.reset(); });
    connection_ = bus.onStateChange([this](BusConnection::State) { takesMarkup_.reset(); });
}

void LinuxUserNotificationCenter::Server::add(NotificationRequest request, ErrorCompletion completion) {
    const auto interval = request.timeInterval;
    auto delivery = std::make_shared<Delivery>(Delivery{std::move(request), std::move(completion)});
    keep([&](auto done) {
        return mainQueue_.after(interval, [this, done, delivery = std::move(delivery)] {
            const auto step = done();
            due(delivery);
        });
    });
}

void LinuxUserNotificationCenter::Server::due(DeliveryPointer delivery) {
    if (takesMarkup_) {
        notify(delivery);
        return;
    }
    due_.push_back(std::move(delivery));
    if (due_.size() == 1) askForCapabilities();
}

// Once for each server: the answer holds for as long as it owns the name. The question may start one.
void LinuxUserNotificationCenter::Server::askForCapabilities() {
    question_ = bus_.call({.name = kServer,
                           .path = kServerPath,
                           .interface = kServer,
                           .method = "GetCapabilities",
                           .answerType = G_VARIANT_TYPE("(as)"),
                           .limit = limits_.delivery},
                          [this](GVariant* answer, const GError* error) {
                              const auto due = std::exchange(due_, {});
                              const bool isThere = answer != nullptr || isAboutTheMethodAlone(error);
                              if (isThere)
                                  takesMarkup_ = answer != nullptr && isListed(answer, "body-markup");
                              for (const DeliveryPointer& each : due) {
                                  if (isThere) {
                                      notify(each);
                                  } else {
                                      each->completion(describedError(*error));
                                  }
                              }
                          });
}

void LinuxUserNotificationCenter::Server::notify(const DeliveryPointer& delivery) {
    keep([&](auto done) {
        return bus_.call(
            {.name = kServer,
             .path = kServerPath,
             .interface = kServer,
             .method = "Notify",
             .parameters = argumentsOfNotify(delivery->request.content, *takesMarkup_),
             .answerType = G_VARIANT_TYPE("(u)"),
             .limit = limits_.delivery},
            [done, delivery](GVariant*, const GError* error) {
                const auto step = done();
                delivery->completion(error != nullptr ? std::optional(describedError(*error)) : std::nullopt);
            });
    });
}

void LinuxUserNotificationCenter::Server::askForLeave(std::function<void(bool)> completion) {
    keep([&](auto done) {
        return bus_.call({.name = kServer,
                          .path = kServerPath,
                          .interface = kServer,
                          .method = "GetServerInformation",
                          .limit = limits_.authorization},
                         [done, completion = std::move(completion)](GVariant* answer, const GError*) {
                             const auto step = done();
                             completion(answer != nullptr);
                         });
    });
}

void LinuxUserNotificationCenter::Server::askForStatus(
    std::function<void(NotificationAuthorization)> completion) {
    const auto askForActivatable = [this, completion] {
        keep([&](auto done) {
            return bus_.call({.name = kBusDriver,
                              .path = kBusDriverPath,
                              .interface = kBusDriver,
                              .method = "ListActivatableNames",
                              .answerType = G_VARIANT_TYPE("(as)"),
                              .limit = limits_.authorization},
                             [done, completion](GVariant* answer, const GError*) {
                                 const auto step = done();
                                 const bool canCome = answer != nullptr && isListed(answer, kServer);
                                 completion(canCome ? NotificationAuthorization::authorized
                                                    : NotificationAuthorization::notDetermined);
                             });
        });
    };
    keep([&](auto done) {
        return bus_.call({.name = kBusDriver,
                          .path = kBusDriverPath,
                          .interface = kBusDriver,
                          .method = "NameHasOwner",
                          .parameters = g_variant_new("(s)", kServer),
                          .answerType = G_VARIANT_TYPE("(b)"),
                          .limit = limits_.authorization},
                         [done, askForActivatable, completion](GVariant* answer, const GError*) {
                             const auto step = done();
                             if (answer == nullptr) {
                                 completion(NotificationAuthorization::notDetermined);
                             } else if (isYes(answer)) {
                                 completion(NotificationAuthorization::authorized);
                             } else {
                                 askForActivatable();
                             }
                         });
    });
}

LinuxUserNotificationCenter::LinuxUserNotificationCenter(MainQueue& mainQueue, BusConnection& sessionBus)
    : LinuxUserNotificationCenter(mainQueue, sessionBus, Limits{}) {}

LinuxUserNotificationCenter::LinuxUserNotificationCenter(MainQueue& mainQueue, BusConnection& sessionBus,
                                                         const Limits& limits)
    : mainQueue_(mainQueue), server_(std::make_shared<Server>(mainQueue, sessionBus, limits)) {}

LinuxUserNotificationCenter::~LinuxUserNotificationCenter() = default;

void LinuxUserNotificationCenter::add(NotificationRequest request,
                                      std::function<void(std::optional<std::string> error)> completion) {
    auto parts = std::make_unique<std::pair<NotificationRequest, ErrorCompletion>>(std::move(request),
                                                                                   std::move(completion));
    mainQueue_.async([weak = std::weak_ptr(server_), parts = std::move(parts)] {
        const auto server = weak.lock();
        if (server) server->add(std::move(parts->first), std::move(parts->second));
    });
}

void LinuxUserNotificationCenter::requestAuthorization(std::function<void(bool isGranted)> completion) {
    mainQueue_.async([weak = std::weak_ptr(server_), completion = std::move(completion)] {
        if (const auto server = weak.lock()) server->askForLeave(completion);
    });
}

void LinuxUserNotificationCenter::authorizationStatus(
    std::function<void(NotificationAuthorization)> completion) {
    mainQueue_.async([weak = std::weak_ptr(server_), completion = std::move(completion)] {
        if (const auto server = weak.lock()) server->askForStatus(completion);
    });
}

}  // namespace norvane
