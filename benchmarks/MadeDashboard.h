#pragma once

#include <chrono>
#include <string>

#include "platform/scripted/ScriptedMachine.h"
#include "views/HostedView.h"

namespace norvane {

// A screen of the dashboard's size and kind, whatever the dashboard itself looks like by now: 520 x 600
// points and about 250 nodes. Five capsules and two rings can be set breathing.
class MadeDashboard {
 public:
    explicit MadeDashboard(TextRuler& ruler);

    // Every figure is another one.
    void nextSecond();
    // Without an end, by half a second there and half a second back.
    void breathe();
    // Its size, once it has been laid out; the evaluation of what has changed comes with it.
    Size fittingSize() { return view_.fittingSize(kSize); }
    // The next frame of thirty in a second.
    DisplayList nextFrame();

    static constexpr Size kSize{520, 600};

 private:
    Element body() const;
    Element header() const;
    Element pod(int number) const;
    Element cell(int number) const;
    Element core(int number) const;
    Element ring(double share, double side) const;
    std::string figure(int number) const;

    ScriptedMachine machine_;
    int second_ = 0;
    bool isOut_ = false;
    HostedView view_;
    MonotonicInstant at_;
};

}  // namespace norvane
