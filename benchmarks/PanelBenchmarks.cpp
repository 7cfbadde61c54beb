#include "PanelBenchmarks.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>
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
#include "preferences/DefaultsKeys.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr int kIterations = 20;
constexpr int kRepetitions = 30;
constexpr std::array kPanels{"cpu", "memory", "storage", "battery"};
constexpr std::array kScales{1, 2};
// Of a screen, in points.
constexpr Size kRoom{1440, 860};
// Between two frames of what breathes.
constexpr auto kFrame = 66ms;

std::string nameOf(const char* panel, const char* what, int scale) {
    return std::string(panel) + " panel, " + what + ", x" + std::to_string(scale);
}

// The dashboard on a scripted machine, with one of its panels open, and what it is painted on.
class OpenPanel {
 public:
    OpenPanel(const char* panel, int scale)
        : platform_(machine_.platform(ruler_)),
          preferences_(rememberingAlone(platform_.userDefaults, panel)),
          sampler_(PerformanceSampler::create(platform_, preferences_)),
          dashboard_(platform_, preferences_, sampler_, smartPodManager_,
                     [this]() -> const CPUHardwareInfo& { return hardware_; }, {}),
          scale_(scale) {
        sampler_->start();
        // The first opening shows the processor, the second one what is remembered.
        for (const bool isVisible : {true, false, true})
            sampler_->setUIVisible(isVisible);
        dashboard_.content().appear();
        picture();
        nextSecond();  // the entrance is over
        size_ = dashboard_.content().fittingSize(kRoom);
        all_ = pixelsCovering(Rect{{}, size_}, scale_);
        surface_.reset(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, all_.width, all_.height));
        paintNext();
    }

    // Every figure is another one.
    void nextSecond() {
        second_ = (second_ + 1) % 97;
        machine_.hostPort.processors.setLoad(second_);
        machine_.hostPort.statistics64.always(VMStatistics64{
            .wire_count = 262'144, .active_count = 786'432 + 30'000ULL * static_cast<unsigned>(second_)});
        machine_.advance(1s);
    }
    void nextMoment() { machine_.advance(kFrame); }

    // What changed since the last time, from the change to pixels.
    void paintNext() {
        DisplayList list = picture();
        std::vector<PixelRect> damage;
        for (const Rect& rect : damageBetween(shown_, list))
            damage.push_back(pixelsCovering(rect, scale_).intersection(all_));
        painter_.paint(surface_.get(), {static_cast<double>(scale_), 0, 0}, list, damage);
        shown_ = std::move(list);
    }
    const PixelRect& all() const { return all_; }

 private:
    static UserDefaults& rememberingAlone(UserDefaults& defaults, const char* panel) {
        defaults.setObject(defaultskey::kIsSmartAutoExpandEnabled, false);
        defaults.setObject(defaultskey::kLastViewedPod, std::string(panel));
        return defaults;
    }
    DisplayList picture() {
        return dashboard_.content().displayList(dashboard_.content().fittingSize(kRoom),
                                                machine_.time.monotonic());
    }

    ScriptedMachine machine_;
    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    CairoPainter painter_{layouts_};
    Platform platform_;
    PreferencesStore preferences_;
    std::shared_ptr<PerformanceSampler> sampler_;
    SmartPodManager smartPodManager_;
    CPUHardwareInfo hardware_{machine_.sysctl};
    MenuRootView dashboard_;
    int scale_;
    Size size_;
    PixelRect all_;
    CairoSurface surface_;
    DisplayList shown_;
    int second_ = 0;
};

void copying(benchmark::State& state, const OpenPanel& panel) {
    const std::vector<std::uint32_t> from(
        static_cast<std::size_t>(panel.all().width) * static_cast<std::size_t>(panel.all().height), 7);
    std::vector<std::uint32_t> to(from.size());
    measureThreadTime(
        state, [] {},
        [&] {
            std::memcpy(to.data(), from.data(), from.size() * sizeof(std::uint32_t));
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        });
}

void add(const std::string& name, std::function<void(benchmark::State&)> body) {
    registerMeasured(name, kIterations, kRepetitions, std::move(body));
}

}  // namespace

void registerPanelBenchmarks() {
    for (const char* const name : kPanels) {
        for (const int scale : kScales) {
            const auto panel = std::make_shared<OpenPanel>(name, scale);
            add(nameOf(name, "copy", scale), [panel](auto& state) { copying(state, *panel); });
            add(nameOf(name, "every figure changes", scale), [panel](auto& state) {
                measureThreadTime(
                    state, [&] { panel->nextSecond(); }, [&] { panel->paintNext(); });
            });
            add(nameOf(name, "a frame in between", scale), [panel](auto& state) {
                measureThreadTime(
                    state, [&] { panel->nextMoment(); }, [&] { panel->paintNext(); });
            });
        }
    }
}

void addPanelFigures(const SampleReporter& samples, FigureTable& table) {
    for (const char* const panel : kPanels) {
        for (const int scale : kScales) {
            for (const char* const what : {"every figure changes", "a frame in between"}) {
                const std::string name = nameOf(panel, what, scale);
                table.add({.what = name,
                           .samples = samples.times(name),
                           .unit = "us",
                           .beside = FigureTable::Beside{"copying all pixels",
                                                         samples.times(nameOf(panel, "copy", scale))}});
            }
        }
    }
}

}  // namespace norvane
