#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <set>

#include "Checks.h"
#include "drawing/Damage.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/CairoPainter.h"
#include "PlayedTree.h"
#include "Property.h"

namespace norvane {
namespace {

constexpr int kMostSteps = 60;
// Each of them costs as much as many pictures.
constexpr int kStepsForEachPainting = 8;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr std::array kHostileNumbers{kNone, kInfinite, -kInfinite, 1e300, -1e300,
                                     -1.0,  -1e-300,   1e-300,     1e9,   5e5};

// Decisions by an input's bytes: words may be any of them, and some numbers are none.
class ByteChoices final : public Choices {
 public:
    explicit ByteChoices(std::string_view bytes) : bytes_(bytes) {}

    unsigned below(unsigned end) override { return next() % std::max(end, 1U); }
    double fraction() override {
        constexpr unsigned kOrdinary = 230;
        const unsigned byte = next();
        return byte < kOrdinary ? byte / 200.0 : kHostileNumbers[(byte - kOrdinary) % kHostileNumbers.size()];
    }
    std::string words() override {
        const unsigned kind = next();
        if (kind == 0) return "";
        if (kind == 1) {
            std::string enormous;
            for (int i = 0; i < 2000; ++i)
                enormous += i % 50 == 0 ? "end\n" : "enormous ";
            return enormous;
        }
        if (kind == 2) return std::string(9000, 'x');
        if (kind == 3) return "\xD8\xA7\xD9\x84\xD8\xB0\xD8\xA7\xD9\x83\xD8\xB1\xD8\xA9 42 \xE2\x80\xAE abc";
        if (kind == 4) return "\xFF\xFE\xC3 \xED\xA0\x80\x01\x7F\t\r\n\xF4\x90\x80\x80";
        return kind < 128 ? "Memory 42 %" : std::string(taken(kind - 128));
    }
    bool isOver() const override { return bytes_.empty(); }

 private:
    std::string_view taken(std::size_t count) {
        const std::string_view bytes = bytes_.substr(0, count);
        bytes_.remove_prefix(bytes.size());
        return bytes;
    }
    unsigned next() { return isOver() ? 0 : static_cast<unsigned char>(taken(1).front()); }

    std::string_view bytes_;
};

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.minX() + rect.minY()) && std::isfinite(rect.maxX() + rect.maxY());
}

void checkItems(const std::vector<DisplayItem>& items) {
    std::set<std::string_view> keys;
    for (const DisplayItem* item : flatItems(items)) {
        require(keys.insert(item->key).second, "each key is there once in its list");
        require(isFinite(item->bounds) && !item->bounds.isEmpty(), "what is painted has a place");
        if (const auto* group = std::get_if<DrawGroup>(&item->command)) checkItems(group->items);
    }
}

void checkTold(const AccessibleNode& node) {
    require(isFinite(node.frame), "what is told has a place");
    for (const AccessibleNode& child : node.children)
        checkTold(child);
}

void checkPicture(const DisplayList& list, PlayedTree& tree) {
    const Size asked = tree.askedFor();
    const Size most = tree.most();
    const bool fits = asked.width >= 0 && asked.height >= 0 && asked.width <= std::max(0.0, most.width) &&
                      asked.height <= std::max(0.0, most.height);
    require(fits, "it likes no more room than there is");
    require(std::isfinite(list.size.width) && std::isfinite(list.size.height), "a picture has a size");
    checkItems(list.items);
    require(damageBetween(list, list).empty(), "a picture does not differ from itself");
    const double rate = tree.view().frameRate();
    require(rate == 0 || rate == 30 || rate == 60, "pictures come at one of the rates, or not at all");
    require(rate != 0 || list.size == asked, "what stands still has the size that was asked for");
    checkTold(tree.view().accessibleTree());
    // The first picture may have put the pointer over something.
    const int changes = tree.changes();
    const DisplayList again = tree.picture();
    require(changes != tree.changes() || again == list, "the same moment has the same picture");
}

void paint(CairoPainter& painter, const DisplayList& list) {
    const PixelRect all = pixelsCovering(Rect{{}, list.size}, 1).intersection({0, 0, 400, 400});
    if (all.isEmpty()) return;
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, all.width, all.height));
    painter.paint(surface.get(), {}, list, {&all, 1});
    require(cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS, "painting leaves the pixels usable");
}

void checkViewTree(std::string_view bytes) {
    ByteChoices choices(bytes);
    PlayedTree tree(choices);
    TextLayouts layouts;
    CairoPainter painter(layouts);
    for (int step = 0; step < kMostSteps; ++step) {
        if (step > 0) tree.step();
        if (tree.isShown()) {
            const DisplayList list = tree.picture();
            const int changes = tree.changes();
            checkPicture(list, tree);
            if (changes == tree.changes() && step % kStepsForEachPainting == 0) paint(painter, list);
        }
        if (choices.isOver()) break;
    }
}

}  // namespace

Checks viewTreeChecks() {
    return {{"ViewTree", checkViewTree}};
}

}  // namespace norvane
