#include "platform/linux/NotifierHost.h"

#include <algorithm>
#include <utility>

#include "platform/linux/CairoHandles.h"
#include "platform/linux/NotifierPlace.h"
#include "platform/linux/StatusItemGround.h"
#include "platform/linux/X11Reply.h"

namespace norvane {

NotifierHost::NotifierHost(const Desk& desk, BusConnection& sessionBus, unsigned number, Handlers handlers)
    : desk_(desk),
      handlers_(std::move(handlers)),
      frames_(desk.mainQueue, desk.clock, desk.light, [this] { item_.pictureChanged(); }),
      menu_(sessionBus, desk.mainQueue),
      item_(sessionBus, desk.mainQueue, desk.clock, number,
            {.paint = [this] { return paint(); },
             .activated = [this](int x, int y) { activated(x, y); },
             .registered = handlers_.registered,
             .refused = handlers_.refused}) {
    appearance_ = desk_.appearance.onDidChange([this] { contentChanged(); });
    dropMemory_ = desk_.memory.onDrop([this] {
        for (Canvas* const each : {&coarse_, &fine_}) {
            each->painter.caches().clear();
            each->layouts.close();
        }
    });
}

NotifierHost::~NotifierHost() {
    if (content_ != nullptr) content_->setChangeHandler(nullptr);
}

void NotifierHost::setContent(SurfaceContent* content) {
    if (content_ != nullptr) content_->setChangeHandler(nullptr);
    content_ = content;
    if (content_ != nullptr) content_->setChangeHandler([this] { contentChanged(); });
    contentChanged();
}

void NotifierHost::contentChanged() {
    if (frames_.mayPaint()) item_.pictureChanged();
}

std::vector<NotifierImage> NotifierHost::paint() {
    constexpr Size kSize{kNotifierSide, kNotifierSide};
    const MonotonicInstant at = desk_.clock.now();
    DisplayList list = content_ != nullptr ? content_->displayList(kSize, at) : DisplayList{kSize, {}};
    list.items.insert(list.items.begin(), statusItemGround(kSize, desk_.appearance.isDark(), false));
    // A panel shows what it is given for a second at least, so it is not given what lies halfway between two
    // pictures: what moves is looked at again soon, and is sent when it stands, or has moved for long.
    constexpr double kLooks = 5;  // a second
    const double rate = content_ != nullptr ? std::min(content_->frameRate(), kLooks) : 0;
    frames_.painted(at, rate);
    if (!(rate > 0)) movingSince_.reset();
    if (rate > 0 && !movingSince_) movingSince_ = at;
    if (movingSince_ && !sent_.empty() && at - *movingSince_ < NotifierItem::kPicturePause) return sent_;
    if (movingSince_) movingSince_ = at;
    sent_ = {coarse_.paint(list), fine_.paint(list)};
    return sent_;
}

NotifierImage NotifierHost::Canvas::paint(const DisplayList& list) {
    const int side = pixelsCovering(kNotifierSide, scale);
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side));
    const PixelRect all{0, 0, side, side};
    painter.paint(surface.get(), {.scale = scale}, list, {&all, 1});
    return NotifierImage::of(surface.get());
}

void NotifierHost::activated(int x, int y) {
    click_ = Pixel{x, y};
    // Panels that do not know the place say 0,0.
    if ((x == 0 && y == 0) || !desk_.screen.bounds().contains(x, y)) {
        click_.reset();
        xcb_connection_t* const server = desk_.connection.get();
        const X11Reply<xcb_query_pointer_reply_t> pointer(
            xcb_query_pointer_reply(server, xcb_query_pointer(server, desk_.connection.root()), nullptr));
        if (pointer && pointer->same_screen != 0) click_ = Pixel{pointer->root_x, pointer->root_y};
    }
    const auto clicked = handlers_.clicked;
    clicked();  // the last thing here: it may end this host
}

std::optional<Rect> NotifierHost::buttonFrame() const {
    if (!item_.isRegistered()) return std::nullopt;
    const X11Screen& screen = desk_.screen;
    const bool isClickThere = click_ && screen.bounds().contains(click_->x, click_->y);
    const Rect primary = screen.primaryFrame().inPoints(screen.scale());
    const Point at = isClickThere ? Point{click_->x / screen.scale(), click_->y / screen.scale()}
                                  : Point{primary.midX(), primary.midY()};
    const auto free = screen.visibleFrame(at);
    if (!free) return std::nullopt;  // the server is gone
    return isClickThere ? notifierFrame(at, screen.monitorFrame(at), *free)
                        : notifierFrameBeforeClicks(primary, *free);
}

}  // namespace norvane
