#include "platform/linux/MountWatch.h"

#include <glib-unix.h>
#include <poll.h>
#include <algorithm>
#include <utility>

#include "platform/linux/BackgroundReader.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/VolumeMounts.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kTable = "/proc/self/mountinfo";
constexpr std::chrono::nanoseconds kLeastQuiet = 200ms;
// So that no more than a tenth of the time goes into looking.
constexpr int kQuietPerLook = 10;

// Whether the table has changed since it was opened or asked last.
bool takeChange(const FileDescriptor& table) {
    pollfd asked{.fd = table.get(), .events = POLLPRI, .revents = 0};
    return poll(&asked, 1, 0) > 0;
}

}  // namespace

// From the first listener to the last. The open table remembers a change until somebody asks it, so that it
// need not be listened to during a look.
class MountWatch::Watching {
 public:
    Watching(MountWatch& owner, FileDescriptor table)
        : owner_(owner),
          table_(std::make_shared<const FileDescriptor>(std::move(table))),
          reader_(owner.mainQueue_, owner.backgroundQueue_) {
        look();
    }
    ~Watching() { forgetSource(); }
    Watching(const Watching&) = delete;
    Watching& operator=(const Watching&) = delete;

 private:
    void look() {
        const bool isFirst = !before_;
        reader_.read<Look>(
            [table = table_, root = owner_.root_, isFirst] { return lookAt(*table, root, isFirst); },
            [this](const std::optional<Look>& look) { take(look.value_or(Look())); });
    }
    static Look lookAt(const FileDescriptor& table, const RootFolder& root, bool isFirst) {
        const LinuxMonotonicClock clock;
        const auto begin = clock.now();
        Look look;
        // What changes from here on is found by the next look.
        if (!isFirst) takeChange(table);
        if (const auto mounts = readVolumeMounts(root)) {
            look.volumes.emplace();
            for (const VolumeMount& volume : mounts->volumes) {
                const Mount& mount = volume.mount;
                look.volumes->emplace(mount.id, mount.device.text(), mount.point);
            }
        }
        if (isFirst) look.isLate = takeChange(table);
        look.took = clock.now() - begin;
        return look;
    }
    void take(const Look& look) {
        quiet_ = quietAfter(look.took);
        listen();
        if (!look.volumes) return;
        const std::set<Volume> before = std::exchange(before_, look.volumes).value_or(*look.volumes);
        const auto hasMore = [](const std::set<Volume>& some, const std::set<Volume>& others) {
            return !std::includes(others.begin(), others.end(), some.begin(), some.end());
        };
        // Which may be the end of this.
        owner_.tell(look.isLate || hasMore(*look.volumes, before),
                    look.isLate || hasMore(before, *look.volumes));
    }

    void listen() {
        source_ = g_unix_fd_source_new(table_->get(), G_IO_PRI);
        g_source_set_static_name(source_, "mounts");
        g_source_set_callback(source_, G_SOURCE_FUNC(changed), this, nullptr);
        g_source_attach(source_, nullptr);
    }
    void forgetSource() {
        if (source_ == nullptr) return;
        g_source_destroy(source_);
        g_source_unref(std::exchange(source_, nullptr));
    }
    static gboolean changed(gint, GIOCondition, gpointer watching) {
        auto* const self = static_cast<Watching*>(watching);
        self->forgetSource();
        self->wait_ = self->owner_.mainQueue_.after(self->quiet_, [self] { self->look(); });
        return G_SOURCE_REMOVE;
    }

    MountWatch& owner_;
    const std::shared_ptr<const FileDescriptor> table_;
    BackgroundReader reader_;
    // What there was at the last look; none before the first.
    std::optional<std::set<Volume>> before_;
    std::chrono::nanoseconds quiet_ = kLeastQuiet;
    GSource* source_ = nullptr;
    Cancellation wait_;
};

MountWatch::MountWatch(MainQueue& mainQueue, BackgroundQueue& backgroundQueue, RootFolder root)
    : mainQueue_(mainQueue), backgroundQueue_(backgroundQueue), root_(std::move(root)) {}

MountWatch::~MountWatch() = default;

std::chrono::nanoseconds MountWatch::quietAfter(std::chrono::nanoseconds look) {
    return std::max(kLeastQuiet, kQuietPerLook * look);
}

Cancellation MountWatch::onDidMount(std::function<void()> observer) {
    return listen(mounted_, std::move(observer));
}

Cancellation MountWatch::onDidUnmount(std::function<void()> observer) {
    return listen(unmounted_, std::move(observer));
}

Cancellation MountWatch::listen(Observers<>& observers, std::function<void()> observer) {
    if (!watching_) {
        if (auto table = root_.open(kTable)) watching_ = std::make_unique<Watching>(*this, std::move(table));
    }
    const auto entry = std::make_shared<Cancellation>(observers.add(std::move(observer)));
    return Cancellation([entry, owner = std::weak_ptr(alive_)] {
        entry->cancel();
        const auto alive = owner.lock();
        if (alive && (*alive)->mounted_.count() + (*alive)->unmounted_.count() == 0) {
            (*alive)->watching_.reset();
        }
    });
}

void MountWatch::tell(bool hasMounted, bool hasUnmounted) {
    const std::weak_ptr<MountWatch*> alive = alive_;
    if (hasMounted) mounted_.tell();
    if (hasUnmounted && !alive.expired()) unmounted_.tell();
}

}  // namespace norvane
