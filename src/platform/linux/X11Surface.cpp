#include "platform/linux/X11Surface.h"

#include <utility>

#include "drawing/Damage.h"
#include "platform/linux/X11Event.h"

namespace norvane {
namespace {

// Parts that do not overlap in points may do so in pixels.
void addApart(std::vector<PixelRect>& parts, PixelRect part) {
    for (std::size_t i = 0; i < parts.size();) {
        if (parts[i].intersection(part).isEmpty()) {
            ++i;
            continue;
        }
        part = part.united(parts[i]);
        parts.erase(parts.begin() + static_cast<std::ptrdiff_t>(i));
        i = 0;  // the larger one may reach others that were passed over
    }
    parts.push_back(part);
}

}  // namespace

bool X11Surface::isReady() {
    isPutOff_ = store_ && store_->isBusy();
    return !isPutOff_;
}

void X11Surface::prepare(const Form& form) {
    const bool isSame = store_ && form.window == form_.window && form.visual.id == form_.visual.id &&
                        form.width == form_.width && form.height == form_.height;
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

std::vector<PixelRect> X11Surface::damageOf(const DisplayList& picture,
                                            const CairoPainter::Placement& placement,
                                            std::span<const PixelRect> more) const {
    if (!hasPicture_ || picture.size != picture_.size || placement != placement_) return {store_->bounds()};
    std::vector<PixelRect> damage;
    const auto add = [&](const PixelRect& pixels) {
        const PixelRect inside = pixels.intersection(store_->bounds());
        if (!inside.isEmpty()) addApart(damage, inside);
    };
    for (const Rect& rect : damageBetween(picture_, picture))
        add(pixelsCovering(rect, placement.scale).moved(placement.x, placement.y));
    for (const PixelRect& part : more)
        add(part);
    return damage;
}

void X11Surface::paint(DisplayList picture, const CairoPainter::Placement& placement,
                       std::span<const PixelRect> more, const Finish& finish) {
    if (!store_) return;
    const std::vector<PixelRect> damage = damageOf(picture, placement, more);
    picture_ = std::move(picture);
    placement_ = placement;
    hasPicture_ = true;
    if (damage.empty()) return;
    painter_.paint(store_->image(), placement_, picture_, damage);
    if (finish) finish(store_->image(), damage);
    painted_.insert(painted_.end(), damage.begin(), damage.end());
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
