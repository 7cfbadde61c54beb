#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string_view>

#include "gallery/Stage.h"
#include "views/HostedView.h"

namespace norvane {

// A screen that has just come up, with room around it for what reaches beyond; an exhibit does to it what a
// user would, and takes its picture.
class Showing {
 public:
    // The stage outlives the showing; so does what `body` looks at.
    Showing(Stage& stage, std::function<Element()> body);

    // For what is shown, to change.
    HostedView& view() { return view_; }

    Showing& pass(std::chrono::milliseconds time);
    // Presses the tabulator so often.
    Showing& tab(int times = 1);
    // Puts the pointer on what bears that name, holds the button down there, and lets it go again.
    Showing& pointAt(std::string_view name);
    Showing& hold(std::string_view name);
    Showing& press(std::string_view name);
    Showing& scroll(Point by);

    DisplayList picture();

 private:
    void settle();
    Point middleOf(std::string_view name);

    Stage& stage_;
    HostedView view_;
};

// An element that has come up, and nothing else.
DisplayList pictureOf(Stage& stage, const std::function<Element()>& body,
                      std::chrono::milliseconds after = std::chrono::seconds(1));

}  // namespace norvane
