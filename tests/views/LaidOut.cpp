#include "views/LaidOut.h"

#include <sstream>
#include <utility>

#include "platform/scripted/ScriptedMachine.h"
#include "views/HostedView.h"
#include "views/ShapeElement.h"

namespace norvane {
namespace {

void tell(std::ostream& out, const AccessibleNode& node) {
    if (!node.name.empty()) {
        if (out.tellp() > 0) out << ", ";
        const Rect& frame = node.frame;
        out << node.name << ' ' << frame.minX() << ',' << frame.minY() << ' ' << frame.size.width << 'x'
            << frame.size.height;
    }
    for (const AccessibleNode& child : node.children)
        tell(out, child);
}

}  // namespace

Element box(std::string name, const FrameSize& size) {
    return shape(Outline::rectangle(), {}).frame(size).accessible({.name = std::move(name)});
}

std::string laidOut(Element element, std::optional<Size> size) {
    ScriptedMachine machine;
    HostedView view([&] { return std::move(element); }, machine.platform());
    const Size fitting = view.fittingSize({1000, 1000});
    view.displayList(size.value_or(fitting), {});
    std::ostringstream out;
    tell(out, view.accessibleTree());
    return out.str();
}

Size fittingSize(Element element, Size most) {
    ScriptedMachine machine;
    HostedView view([&] { return std::move(element); }, machine.platform());
    return view.fittingSize(most);
}

}  // namespace norvane
