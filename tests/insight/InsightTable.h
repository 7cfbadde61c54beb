#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "preferences/InsightVerbosity.h"

namespace norvane {

// What is to be said in each state of a machine, as a truth table: no row outranks another, and every state
// belongs to exactly one. A pattern has for each letter of a state the same letter, several in brackets, or a
// point where any will do; blanks only group.
class InsightTable {
 public:
    struct Row {
        std::vector<std::string_view> patterns;
        std::string headline;
        std::string explanation;  // how it begins
        bool wasReached = false;
    };

    explicit InsightTable(std::vector<Row> rows) : rows_(std::move(rows)) {}

    // `insightAt` gives the text at a verbosity.
    template <typename InsightAt>
    void expect(std::string_view state, InsightAt insightAt) {
        Row* only = nullptr;
        for (Row& row : rows_) {
            if (!describes(row, state)) continue;
            ASSERT_EQ(only, nullptr) << state << " belongs to two rows of the table";
            only = &row;
        }
        ASSERT_NE(only, nullptr) << state << " belongs to no row of the table";
        only->wasReached = true;
        const std::string detailed(insightAt(InsightVerbosity::detailed));
        EXPECT_TRUE(detailed.starts_with(only->headline + '\n' + only->explanation))
            << state << ' ' << detailed;
        EXPECT_EQ(insightAt(InsightVerbosity::concise), only->headline) << state;
    }

    void expectAllReached() const {
        for (const Row& row : rows_)
            EXPECT_TRUE(row.wasReached) << row.headline << ' ' << row.explanation;
    }

 private:
    static bool describes(const Row& row, std::string_view state) {
        for (const std::string_view pattern : row.patterns) {
            if (describes(pattern, state)) return true;
        }
        return false;
    }

    static bool describes(std::string_view pattern, std::string_view state) {
        for (const char letter : state) {
            if (pattern.starts_with(' ')) pattern.remove_prefix(1);
            const auto length = pattern.starts_with('[') ? pattern.find(']') + 1 : 1;
            const std::string_view allowed = pattern.substr(0, length);
            if (allowed != "." && allowed.find(letter) == std::string_view::npos) return false;
            pattern.remove_prefix(length);
        }
        return pattern.empty();
    }

    std::vector<Row> rows_;
};

}  // namespace norvane
