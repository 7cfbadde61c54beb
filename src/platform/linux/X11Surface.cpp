#include "platform/linux/X11Surface.h"

#include <utility>

#include "drawing/Damage.h"
#include "platform/linux/X11Event.h"

namespace norvane {

void X11Surface::prepare(const Form& form, Finish finish) {
    finish_ = std::move(finish);
    const bool isSame = store_ && form.window == form_.window && form.visual.id == form_.visual.id &&
                        form.width == form_.width && form.height == form_.height &&
                        form.placement.scale == form_.placement.scale &&
                        form.placement.x == form_.placement.x && form.placement.y == form_.placement.y;
    if (isSame) return;
    release();
    form_ = form;
    store_ = std::make_unique<BackingStore>(connection_, form.window, form.visual, form.width, form.height);
}

void X11Surface::release() {
    store_.reset();
    picture_ = {};
    hasPicture_ = false;
    isPutOff_ = false;
    painted_.clear();
}

bool X11Surface::paint(DisplayList picture) {
    if (!store_) return true;
    if (store_->isBusy()) {
        isPutOff_ = true;
        return false;
    }
    std::vector<PixelRect> damage;
    if (hasPicture_ && picture.size == picture_.size) {
        for (const Rect& rect : damageBetween(picture_, picture)) {
            const PixelRect pixels = pixelsCovering(rect, form_.placement.scale)
                                         .moved(form_.placement.x, form_.placement.y)
                                         .intersection(store_->bounds());
            if (!pixels.isEmpty()) damage.push_back(pixels);
        }
    } else {
        damage.push_back(store_->bounds());
    }
    picture_ = std::move(picture);
    hasPicture_ = true;
    if (damage.empty()) return true;
    painter_.paint(store_->image(), form_.placement, picture_, damage);
    if (finish_) finish_(store_->image(), damage);
    painted_.insert(painted_.end(), damage.begin(), damage.end());
    return true;
}

void X11Surface::present() {
    if (store_) store_->present(painted_);
    painted_.clear();
}

bool X11Surface::handle(const xcb_generic_event_t& event) {
    if (!store_) return false;
    if (typeOf(event) == XCB_EXPOSE) {
        const auto& expose = eventAs<xcb_expose_event_t>(event);
        const PixelRect part{expose.x, expose.y, expose.width, expose.height};
        if (hasPicture_) store_->present({&part, 1});
        return false;
    }
    return store_->handle(event) && std::exchange(isPutOff_, false);
}

}  // namespace norvane
