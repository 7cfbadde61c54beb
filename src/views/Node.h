#pragma once

#include <memory>

#include "drawing/Rect.h"
#include "drawing/TextRuler.h"
#include "views/Proposal.h"

namespace norvane {

class SceneBuilder;

// A placed thing in the tree of a screen. Sizes travel up, places travel down, paint comes last. A node lives
// for one evaluation of its screen; what lasts longer is the screen's own state.
class Node {
 public:
    virtual ~Node() = default;

    // The size that it takes of what is offered: finite unless it was offered infinity, never negative.
    virtual Size measure(TextRuler& ruler, const Proposal& proposal) const = 0;
    // Takes its place, of any size, and gives its children theirs.
    virtual void place(TextRuler& ruler, const Rect& frame) = 0;
    // Adds its picture, its sensitive regions and its accessible tree.
    virtual void build(SceneBuilder& scene) const = 0;
};

using NodePointer = std::unique_ptr<Node>;

}  // namespace norvane
