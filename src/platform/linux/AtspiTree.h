#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "platform/AccessibleNode.h"
#include "platform/linux/AtspiEvent.h"
#include "platform/linux/AtspiObject.h"
#include "platform/linux/PixelRect.h"

namespace norvane {

// The application as assistive technologies see it: a frame for each surface, and in it what the surface
// tells. What is the same thing keeps its number from one update to the next. A plain value, with nobody
// behind it.
class AtspiTree {
 public:
    struct Surface {
        // The same surface keeps it.
        std::uint64_t number = 0;
        AccessibleNode tree;
        // On the screen, and how many pixels a point has.
        PixelRect frame;
        double scale = 1;
        bool hasKeyboard = false;
        // All of it is one button, which says what its parts say: the item in the panel.
        bool isButton = false;
    };

    AtspiTree();

    // Takes in the surfaces of now, and tells what is different from before, in the order in which it is to
    // be told.
    std::vector<AtspiEvent> update(const std::vector<Surface>& surfaces);

    // Null where there is none such.
    const AtspiObject* find(AtspiId id) const;
    const std::map<AtspiId, AtspiObject>& objects() const { return objects_; }
    // Among the children of its parent; -1 for the application.
    int indexOf(AtspiId id) const;
    // The innermost object there, in pixels of the screen, within that one; 0 for none.
    AtspiId at(AtspiId within, int x, int y) const;

 private:
    class Builder;

    std::map<AtspiId, AtspiObject> objects_;
    // By surface, key and role; with a number behind where several have the same.
    std::map<std::string, AtspiId, std::less<>> ids_;
    AtspiId lastId_ = 0;
};

}  // namespace norvane
