#include "ViewBenchmarks.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dashboard/MenuRootView.h"
#include "drawing/Damage.h"
#include "Measured.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/CairoPainter.h"
#include "platform/linux/PangoTextRuler.h"
#include "platform/scripted/ScriptedMachine.h"
#include "shell/PassthroughHostingView.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

constexpr int kIterations = 20;
constexpr int kRepetitions = 50;
// Of a screen, in points.
constexpr Size kRoom{1440, 860};

// What the benchmarks set up and keep: a scripted machine on which each `nextSecond` changes every figure,
// with the program's own way of measuring and painting text.
class Screen {
 public:
    explicit Screen(bool measuresRealText)
        : platform_(platform(measuresRealText)),
          preferences_(platform_.userDefaults),
          sampler_(PerformanceSampler::create(platform_, preferences_)),
          dashboard_(platform_, preferences_, sampler_, smartPodManager_,
                     [this]() -> const CPUHardwareInfo& { return hardware_; }, {}),
          label_(labelModel_, platform_) {
        sampler_->start();
        sampler_->setUIVisible(true);
        dashboard_.content().appear();
        dashboardPicture();
        nextSecond();  // the entrance is over
    }

    void nextSecond() {
        second_ = (second_ + 1) % 97;
        machine_.hostPort.processors.setLoad(second_);
        machine_.hostPort.statistics64.always(VMStatistics64{
            .wire_count = 262'144, .active_count = 786'432 + 30'000ULL * static_cast<unsigned>(second_)});
        machine_.advance(std::chrono::seconds(1));
        labelModel_.cpuPercent.set(second_);
        labelModel_.ramUsedGB.set(second_ / 7.0);
    }

    DisplayList dashboardPicture() {
        return dashboard_.content().displayList(dashboard_.content().fittingSize(kRoom),
                                                machine_.time.monotonic());
    }
    DisplayList labelPicture() { return label_.displayList({54, 22}, {}); }
    TextLayouts& layouts() { return layouts_; }

 private:
    Platform platform(bool measuresRealText) {
        return measuresRealText ? machine_.platform(pangoRuler_) : machine_.platform();
    }

    ScriptedMachine machine_;
    TextLayouts layouts_;
    PangoTextRuler pangoRuler_{layouts_};
    Platform platform_;
    PreferencesStore preferences_;
    MenuBarStatsModel labelModel_;
    std::shared_ptr<PerformanceSampler> sampler_;
    SmartPodManager smartPodManager_;
    CPUHardwareInfo hardware_{machine_.sysctl};
    MenuRootView dashboard_;
    PassthroughHostingView label_;
    int second_ = 0;
};

void add(const std::string& name, std::function<void(benchmark::State&)> body) {
    registerMeasured(name, kIterations, kRepetitions, std::move(body));
}

void pictures(benchmark::State& state, Screen& screen, DisplayList (Screen::*picture)()) {
    DisplayList list;
    measure(
        state, [&] { screen.nextSecond(); }, [&] { list = (screen.*picture)(); }, [] {});
    benchmark::DoNotOptimize(list);
}

void damage(benchmark::State& state, Screen& screen) {
    DisplayList before = screen.dashboardPicture();
    DisplayList after;
    std::vector<Rect> found;
    measure(
        state,
        [&] {
            screen.nextSecond();
            after = screen.dashboardPicture();
        },
        [&] { found = damageBetween(before, after); }, [&] { before = std::move(after); });
    if (found.empty()) state.SkipWithError("nothing changed");
}

void painting(benchmark::State& state, Screen& screen) {
    DisplayList list = screen.dashboardPicture();
    const PixelRect all = pixelsCovering(Rect{{}, list.size}, 1);
    const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, all.width, all.height));
    CairoPainter painter(screen.layouts());
    measure(
        state,
        [&] {
            screen.nextSecond();
            list = screen.dashboardPicture();
        },
        [&] {
            painter.paint(surface.get(), {}, list, {&all, 1});
        },
        [] {});
}

}  // namespace

void registerViewBenchmarks() {
    const auto fixed = std::make_shared<Screen>(false);
    const auto real = std::make_shared<Screen>(true);
    add("dashboard: picture, fixed text",
        [fixed](auto& state) { pictures(state, *fixed, &Screen::dashboardPicture); });
    add("dashboard: picture", [real](auto& state) { pictures(state, *real, &Screen::dashboardPicture); });
    add("dashboard: damage", [real](auto& state) { damage(state, *real); });
    add("dashboard: painting all", [real](auto& state) { painting(state, *real); });
    add("label: picture", [real](auto& state) { pictures(state, *real, &Screen::labelPicture); });
}

}  // namespace norvane
