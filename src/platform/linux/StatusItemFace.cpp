#include "platform/linux/StatusItemFace.h"

#include <iterator>
#include <utility>

#include "platform/linux/X11Event.h"

namespace norvane {

using namespace std::chrono_literals;

StatusItemFace::StatusItemFace(const Desk& desk, std::function<void()> onUpdate,
                               std::function<void()> clicked)
    : desk_(desk),
      onUpdate_(std::move(onUpdate)),
      clicked_(std::move(clicked)),
      surface_(desk.connection, desk.layouts),
      frames_(desk.mainQueue, desk.clock, desk.light, [this] { update(); }) {
    appearance_ = desk_.appearance.onDidChange([this] { updateSoon(); });
    screen_ = desk_.screen.onDidChange([this] { updateSoon(); });
    dropMemory_ = desk_.memory.onDrop([this] { surface_.dropCaches(); });
    updateSoon();
}

StatusItemFace::~StatusItemFace() {
    if (content_ != nullptr) content_->setChangeHandler(nullptr);
}

void StatusItemFace::setContent(SurfaceContent* content) {
    if (content_ != nullptr) content_->setChangeHandler(nullptr);
    content_ = content;
    if (content_ != nullptr) {
        content_->setChangeHandler([this] {
            updateSoon();
            desk_.accessibleSurfaces.changed();
        });
    }
    updateSoon();
}

void StatusItemFace::updateSoon() {
    if (std::exchange(isUpdateDue_, true)) return;
    update_ = desk_.mainQueue.after(0ns, [this] { update(); });
}

void StatusItemFace::update() {
    update_.cancel();
    isUpdateDue_ = false;
    if (desk_.connection.isAlive()) onUpdate_();
}

bool StatusItemFace::paint(const X11Surface::Form& form, std::vector<DisplayItem> ground, Size contentSize) {
    if (visibility_ == XCB_VISIBILITY_FULLY_OBSCURED) {
        frames_.stop();
        return false;
    }
    if (!frames_.mayPaint() || !surface_.isReady()) return false;
    surface_.prepare(form);
    const MonotonicInstant at = desk_.clock.now();
    const double scale = desk_.screen.scale();
    DisplayList list{{form.width / scale, form.height / scale}, std::move(ground)};
    if (content_ != nullptr) {
        DisplayList content = content_->displayList(contentSize, at);
        list.items.insert(list.items.end(), std::make_move_iterator(content.items.begin()),
                          std::make_move_iterator(content.items.end()));
    }
    surface_.paint(std::move(list), {.scale = scale});
    frames_.painted(at, content_ != nullptr ? content_->frameRate() : 0);
    return true;
}

void StatusItemFace::stop() {
    frames_.stop();
    visibility_ = XCB_VISIBILITY_UNOBSCURED;
}

void StatusItemFace::release() {
    stop();
    surface_.release();
}

void StatusItemFace::handle(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_BUTTON_PRESS:
            if (eventAs<xcb_button_press_event_t>(event).detail == XCB_BUTTON_INDEX_1) {
                const auto clicked = clicked_;
                if (clicked) clicked();
            }
            return;
        case XCB_VISIBILITY_NOTIFY: {
            const int before =
                std::exchange(visibility_, eventAs<xcb_visibility_notify_event_t>(event).state);
            if (visibility_ == XCB_VISIBILITY_FULLY_OBSCURED) frames_.stop();
            if (before == XCB_VISIBILITY_FULLY_OBSCURED && visibility_ != before) updateSoon();
            return;
        }
        default:
            if (surface_.handle(event)) updateSoon();
            return;
    }
}

}  // namespace norvane
