#include "FrameBenchmarks.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "drawing/Damage.h"
#include "MadeDashboard.h"
#include "Measured.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/CairoPainter.h"
#include "platform/linux/PangoTextRuler.h"

namespace norvane {
namespace {

constexpr int kIterations = 20;
constexpr int kRepetitions = 50;
constexpr std::array kScales{1, 2};

struct Bound {
    const char* name;
    double microseconds;
};
constexpr std::array kBounds{
    Bound{"frame: change, layout and list", 600},   Bound{"frame: seven things breathe, x1", 300},
    Bound{"frame: seven things breathe, x2", 1000}, Bound{"frame: painting all, x1", 6000},
    Bound{"frame: painting all, x2", 15000},
};

std::string atScale(const std::string& name, int scale) {
    return name + ", x" + std::to_string(scale);
}

void add(const std::string& name, std::function<void(benchmark::State&)> body) {
    registerMeasured(name, kIterations, kRepetitions, std::move(body));
}

// A screen, and what it is painted on at one scale.
class Window {
 public:
    explicit Window(int scale)
        : dashboard(ruler_),
          all(pixelsCovering(Rect{{}, MadeDashboard::kSize}, scale)),
          scale_(scale),
          surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, all.width, all.height)) {}

    void paint(const DisplayList& list, const std::vector<PixelRect>& damage) {
        painter_.paint(surface_.get(), {static_cast<double>(scale_), 0, 0}, list, damage);
    }
    // Only what differs between the two; whether anything does.
    bool paint(const DisplayList& before, const DisplayList& after) {
        std::vector<PixelRect> damage;
        for (const Rect& rect : damageBetween(before, after))
            damage.push_back(pixelsCovering(rect, scale_).intersection(all));
        paint(after, damage);
        return !damage.empty();
    }

 private:
    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    CairoPainter painter_{layouts_};

 public:
    MadeDashboard dashboard;
    const PixelRect all;

 private:
    int scale_;
    CairoSurface surface_;
};

void copying(benchmark::State& state, int scale) {
    const PixelRect all = pixelsCovering(Rect{{}, MadeDashboard::kSize}, scale);
    const std::vector<std::uint32_t> from(
        static_cast<std::size_t>(all.width) * static_cast<std::size_t>(all.height), 7);
    std::vector<std::uint32_t> to(from.size());
    measureThreadTime(
        state, [] {},
        [&] {
            std::memcpy(to.data(), from.data(), from.size() * sizeof(std::uint32_t));
            benchmark::DoNotOptimize(to.data());
            benchmark::ClobberMemory();
        });
}

void change(benchmark::State& state, Window& window) {
    DisplayList list;
    measureThreadTime(
        state, [&] { window.dashboard.nextSecond(); }, [&] { list = window.dashboard.nextFrame(); });
    state.counters["items"] = static_cast<double>(list.items.size());
}

void listAlone(benchmark::State& state, Window& window) {
    DisplayList list;
    window.dashboard.breathe();
    measureThreadTime(
        state, [] {}, [&] { list = window.dashboard.nextFrame(); });
    benchmark::DoNotOptimize(list);
}

void breathing(benchmark::State& state, Window& window) {
    window.dashboard.breathe();
    DisplayList before = window.dashboard.nextFrame();
    window.paint(before, {window.all});
    // What breathes goes in steps: some pictures are the same as the last one. Every radius has been there
    // before, as on a screen that has been open for a while.
    int moves = 0;
    const auto frame = [&] {
        DisplayList after = window.dashboard.nextFrame();
        if (window.paint(before, after)) ++moves;
        before = std::move(after);
    };
    for (int i = 0; i < 120; ++i)
        frame();
    moves = 0;
    measureThreadTime(
        state, [] {}, frame);
    if (moves == 0) state.SkipWithError("nothing moves");
    state.counters["pictures that differ"] = moves;
}

void paintingAll(benchmark::State& state, Window& window) {
    DisplayList list;
    measureThreadTime(
        state,
        [&] {
            window.dashboard.nextSecond();
            list = window.dashboard.nextFrame();
        },
        [&] { window.paint(list, {window.all}); });
}

}  // namespace

void registerFrameBenchmarks() {
    const auto still = std::make_shared<Window>(1);
    add("frame: change, layout and list", [still](auto& state) { change(state, *still); });
    const auto moving = std::make_shared<Window>(1);
    add("frame: list alone", [moving](auto& state) { listAlone(state, *moving); });
    for (const int scale : kScales) {
        add(atScale("frame: copying all", scale), [scale](auto& state) { copying(state, scale); });
        const auto window = std::make_shared<Window>(scale);
        add(atScale("frame: painting all", scale), [window](auto& state) { paintingAll(state, *window); });
        const auto other = std::make_shared<Window>(scale);
        add(atScale("frame: seven things breathe", scale),
            [other](auto& state) { breathing(state, *other); });
    }
}

void addFrameFigures(const SampleReporter& samples, FigureTable& table) {
    for (const Bound& bound : kBounds) {
        const std::string name = bound.name;
        const std::string copy = atScale("frame: copying all", name.ends_with("x2") ? 2 : 1);
        table.add({.what = name,
                   .samples = samples.times(name),
                   .unit = "us",
                   .beside = FigureTable::Beside{"copying all pixels", samples.times(copy)},
                   .bound = bound.microseconds});
    }
}

}  // namespace norvane
