#pragma once

#include "drawing/DisplayList.h"
#include "platform/scripted/ScriptedMachine.h"
#include "TreePlan.h"
#include "views/HostedView.h"

namespace norvane {

// A made-up tree on a scripted machine, to which made-up things happen: its state changes, somebody points,
// presses and types, time passes, the desktop turns dark, the window closes and opens again.
class PlayedTree {
 public:
    // All outlive the tree. Texts are measured by the machine's own ruler where none is given.
    explicit PlayedTree(Choices& choices, TextRuler* ruler = nullptr);

    void step();
    // What a window would show now, in the size that the tree likes.
    DisplayList picture();
    // The last picture's.
    Size askedFor() const { return size_; }
    Size most() const { return most_; }
    bool isShown() const { return isShown_; }
    // How often the view has said that something may have changed.
    int changes() const { return changes_; }
    HostedView& view() { return view_; }

 private:
    Element body();
    void happened(unsigned what);
    void point();
    void type();
    void closeOrOpen();
    void performAny(const AccessibleNode& node);

    Choices& choices_;
    ScriptedMachine machine_;
    TreePlan plan_;
    // Windows keep their size while what is in them changes; others follow it.
    const bool isFixed_;
    HostedView view_;
    Size most_{200, 160};
    Size size_;
    bool isShown_ = false;
    int changes_ = 0;
};

}  // namespace norvane
