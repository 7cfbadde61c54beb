#pragma once

#include <optional>

namespace norvane {

enum class Edge { top, leading, bottom, trailing };

// How something comes and goes where that is animated: it fades, or it moves in from an edge by its own
// extent and out again, or both.
struct Transition {
    bool fades = true;
    std::optional<Edge> movesFrom = {};

    static Transition opacity() { return {}; }
    static Transition move(Edge edge) { return {.fades = false, .movesFrom = edge}; }
    static Transition none() { return {.fades = false}; }
    Transition withOpacity() const { return {.fades = true, .movesFrom = movesFrom}; }

    bool operator==(const Transition&) const = default;
};

}  // namespace norvane
