#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "drawing/Rect.h"
#include "drawing/TextRuler.h"
#include "views/Animated.h"
#include "views/Child.h"
#include "views/Proposal.h"

namespace norvane {

class SceneBuilder;
class Update;
struct StillScene;

// A thing in the tree of a screen. Each evaluation of the screen makes new nodes; a node takes over from the
// one that stood in its place what lasts: where things are on their way to, and the state of components.
// Sizes travel up, places travel down, paint comes last. A kind of node says how it fits, how it places its
// children, what it takes over and what it paints; everything else is done here, for all kinds alike.
class Node {
 public:
    Node();
    virtual ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // The size that it takes of what is offered: finite unless it was offered infinity, never negative.
    Size measure(TextRuler& ruler, const Proposal& proposal) const;
    // Takes its place and gives its children theirs.
    void place(TextRuler& ruler, const Rect& frame);
    // Where layout put it, which is where it ends when nothing moves any more.
    const Rect& frame() const { return frame_; }

    // Takes the place of that node of the same kind, or of none.
    void update(Node* before, Update& update);
    // How large it looks at that time.
    Size sizeAt(MonotonicInstant now) const { return place_.valueAt(now).size; }
    // After a layout: sets out from where it stands to where it was placed.
    void settle(Point parentOrigin, const Update& update);
    // Sizes are worked out anew from here on.
    void forgetSizes();
    // The tree is being shown: tells those who want to know, outermost first.
    void appear(Update& update);
    // It leaves the tree for good and is only seen going: nothing reaches its components any more.
    void retire();
    // Lets go of what has finished leaving.
    void prune(MonotonicInstant now);

    // What it came to when nothing in it moved; null for none. It is let go of by `forgetStill`.
    const std::shared_ptr<const StillScene>& still() const { return still_; }
    void keepStill(std::shared_ptr<const StillScene> still) const { still_ = std::move(still); }
    void forgetStill() const;

    // Adds its picture, its sensitive regions and its accessible tree.
    void build(SceneBuilder& scene) const;

    // Whether it may take the other's place and what it stands for.
    virtual bool isSameKindAs(const Node& other) const;
    // It takes room along the stack that it is in, whichever way that goes, and none across it.
    virtual bool isSpacer() const { return false; }

 protected:
    explicit Node(std::vector<Child> children);

    virtual Size fit(TextRuler& ruler, const Proposal& proposal) const = 0;
    // Each child where the node is, unless it says otherwise.
    virtual void placeChildren(TextRuler& ruler, const Rect& frame);
    // Attributes: from its predecessor, null for the first of its kind in this place.
    virtual void take(Node* before, Update& update);
    virtual void didAppear(Update& update);
    virtual void didRetire() {}
    // `frame` is where it stands at this moment.
    virtual void paint(SceneBuilder& scene, const Rect& frame) const;
    void paintChildren(SceneBuilder& scene) const;

    const std::vector<Child>& children() const { return children_; }
    // New children in the place of those that it has.
    void replaceChildren(std::vector<Child> children, Update& update);
    // For `take`: the children that a node makes only when it knows its state.
    void setChildren(std::vector<Child> children) { children_ = std::move(children); }

 private:
    void adopt(std::vector<Child> before, std::vector<Child> leaving, bool isContinued, Update& update);
    void letGo(Child child, const Update& update);

    std::vector<Child> children_;
    std::vector<Child> leaving_;  // seen going; their keys are not unique
    Rect frame_;
    Animated<Rect> place_;  // relative to the parent's origin
    bool isPlaced_ = false;
    mutable std::vector<std::pair<Proposal, Size>> sizes_;
    mutable std::shared_ptr<const StillScene> still_;
};

using NodePointer = std::unique_ptr<Node>;

}  // namespace norvane
