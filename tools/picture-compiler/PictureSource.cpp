#include "PictureSource.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace norvane {
namespace {

// A literal of type float. A ten-thousandth of a unit is finer than any screen shows.
std::string literal(double value) {
    std::array<char, 64> buffer{};
    const double rounded = std::round(value * 1e4) / 1e4 + 0.0;  // without a negative zero
    std::snprintf(buffer.data(), buffer.size(), "%.4f", rounded);
    std::string text = buffer.data();
    while (text.ends_with("0") && !text.ends_with(".0"))
        text.pop_back();
    return text + 'F';
}

std::string literals(std::initializer_list<double> values) {
    std::string text = "{";
    for (const double value : values) {
        if (text.size() > 1) text += ", ";
        text += literal(value);
    }
    return text + '}';
}

std::string run(std::size_t first, std::size_t count) {
    return '{' + std::to_string(first) + ", " + std::to_string(count) + '}';
}

const char* word(bool value) {
    return value ? "true" : "false";
}

// A text as a literal in several lines.
std::string quoted(const std::string& text) {
    constexpr std::size_t kPerLine = 96;
    std::string made;
    for (std::size_t at = 0; at < text.size() || at == 0; at += kPerLine) {
        made += "\n    \"" + text.substr(at, kPerLine) + '"';
    }
    return made;
}

class Writer {
 public:
    std::string entries(std::vector<NamedPicture> pictures) {
        std::sort(pictures.begin(), pictures.end(),
                  [](const NamedPicture& a, const NamedPicture& b) { return a.name < b.name; });
        std::string text;
        for (const NamedPicture& named : pictures) {
            const Size grid = named.picture.grid;
            text += "    {" + run(names_.size(), named.name.size()) + ", " +
                    run(layerCount_, named.picture.layers.size()) + ", " + literal(grid.width) + ", " +
                    literal(grid.height) + "},  // " + named.name + '\n';
            names_ += named.name;
            for (const PictureLayer& layer : named.picture.layers)
                add(layer);
        }
        return text;
    }

    std::string tables() const {
        if (std::max({names_.size(), steps_.size(), numberCount_}) >
            std::numeric_limits<std::uint32_t>::max()) {
            throw std::length_error("the pictures are too many");
        }
        return "constexpr CompiledPictures::Layer kLayers[] = {\n" + layers_ +
               "};\n\nconstexpr char kNames[] =" + quoted(names_) +
               ";\n\nconstexpr char kSteps[] =" + quoted(steps_) + ";\n\nconstexpr float kNumbers[] = {\n" +
               numbers_ + "};\n";
    }

 private:
    void add(const PictureLayer& layer) {
        const std::size_t firstStep = steps_.size();
        const std::size_t firstNumber = numberCount_;
        numbers_ += "   ";
        for (const Path::Segment& segment : layer.path.segments)
            add(segment);
        numbers_ += '\n';
        const Fill& fill = layer.fill;
        const StrokeStyle line = layer.stroke.value_or(StrokeStyle{});
        layers_ += "    {" + run(firstStep, steps_.size() - firstStep) + ", " + std::to_string(firstNumber) +
                   ", " + word(layer.rule == FillRule::evenOdd) + ", " + word(line.cap == LineCap::round) +
                   ", " + word(line.join == LineJoin::round) + ", " + literal(layer.stroke ? line.width : 0) +
                   ",\n     " + literals({fill.from.red, fill.from.green, fill.from.blue, fill.from.alpha}) +
                   ", " + literals({fill.to.red, fill.to.green, fill.to.blue, fill.to.alpha}) + ", " +
                   literals({fill.start.x, fill.start.y, fill.end.x, fill.end.y}) + "},\n";
        ++layerCount_;
    }
    void add(const Path::Segment& segment) {
        if (const auto* move = std::get_if<Path::MoveTo>(&segment)) {
            steps_ += 'M';
            add(move->to);
        } else if (const auto* line = std::get_if<Path::LineTo>(&segment)) {
            steps_ += 'L';
            add(line->to);
        } else if (const auto* curve = std::get_if<Path::CurveTo>(&segment)) {
            steps_ += 'C';
            add(curve->first);
            add(curve->second);
            add(curve->to);
        } else {
            steps_ += 'Z';
        }
    }
    void add(Point point) {
        numbers_ += ' ' + literal(point.x) + ", " + literal(point.y) + ',';
        numberCount_ += 2;
    }

    std::string names_;
    std::string steps_;
    std::string layers_;
    std::string numbers_;
    std::size_t layerCount_ = 0;
    std::size_t numberCount_ = 0;
};

}  // namespace

std::string pictureSource(std::vector<NamedPicture> symbols, std::vector<NamedPicture> images) {
    Writer writer;
    // The tables hold what the entries have asked for.
    const std::string symbolEntries = writer.entries(std::move(symbols));
    const std::string imageEntries = writer.entries(std::move(images));
    return "// Made by norvane-picture-compiler from the drawings in resources/.\n"
           "#include \"drawing/CompiledPictures.h\"\n\nnamespace norvane {\nnamespace {\n\n" +
           writer.tables() + "\nconstexpr CompiledPictures::Entry kSymbols[] = {\n" + symbolEntries +
           "};\n\nconstexpr CompiledPictures::Entry kImages[] = {\n" + imageEntries +
           "};\n\n}  // namespace\n\nCompiledPictures compiledPictures() {\n"
           "    // Their lengths are known here; each ends with a zero that is not part of it.\n"
           "    return {kSymbols, kImages, kLayers, {kNames, sizeof kNames - 1}, {kSteps, sizeof kSteps - "
           "1}, "
           "kNumbers};\n}\n\n}  // namespace "
           "norvane\n";
}

}  // namespace norvane
