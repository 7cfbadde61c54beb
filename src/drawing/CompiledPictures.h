#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace norvane {

// Our pictures as the build lays them down in read-only memory. A picture is a run of layers, a layer a run
// of steps, and each step takes its numbers in turn: two for M and L, six for C, none for Z.
struct CompiledPictures {
    struct Run {
        std::uint32_t first = 0;
        std::uint32_t count = 0;
    };
    struct Entry {
        Run name;  // characters
        Run layers;
        float width = 0;
        float height = 0;
    };
    struct Layer {
        Run steps;
        std::uint32_t firstNumber = 0;
        bool isEvenOdd = false;
        bool hasRoundCaps = false;
        bool hasRoundJoins = false;
        float lineWidth = 0;  // 0 for a filled layer
        float from[4] = {};   // red, green, blue, opacity
        float to[4] = {};
        float gradient[4] = {};  // from where to where
    };

    // Each sorted by name.
    std::span<const Entry> symbols;
    std::span<const Entry> images;
    std::span<const Layer> layers;
    std::string_view names;
    std::string_view steps;
    std::span<const float> numbers;

    std::string_view nameOf(const Entry& entry) const {
        return names.substr(entry.name.first, entry.name.count);
    }
};

// Written by the build, from the drawings in resources/.
CompiledPictures compiledPictures();

}  // namespace norvane
