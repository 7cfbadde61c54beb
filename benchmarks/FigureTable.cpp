#include "FigureTable.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>

namespace norvane {
namespace {

// Three digits that count.
std::string shown(double figure) {
    if (figure == 0) return "0";
    const double size = std::abs(figure);
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", size >= 100 ? 0 : size >= 10 ? 1 : size >= 0.1 ? 2 : 4, figure);
    return text;
}

// The sample below which that share of them lies, those between two interpolated.
double quantile(const std::vector<double>& sorted, double share) {
    const double at = share * static_cast<double>(sorted.size() - 1);
    const auto below = static_cast<std::size_t>(at);
    const std::size_t above = std::min(below + 1, sorted.size() - 1);
    return std::lerp(sorted[below], sorted[above], at - std::floor(at));
}

// The middle half of the samples; of few, all of them.
std::string spreadOf(std::vector<double> samples) {
    if (samples.size() < 2) return "";
    std::sort(samples.begin(), samples.end());
    const double rest = samples.size() < 8 ? 0 : 0.25;
    return shown(quantile(samples, rest)) + " to " + shown(quantile(samples, 1 - rest));
}

}  // namespace

std::optional<double> FigureTable::median(std::vector<double> samples) {
    if (samples.empty()) return std::nullopt;
    std::sort(samples.begin(), samples.end());
    return quantile(samples, 0.5);
}

void FigureTable::add(Row row) {
    const auto figure = median(row.samples);
    const auto least = row.beside ? median(row.beside->samples) : std::nullopt;
    const auto ratio = figure && least && *least > 0 ? std::optional(*figure / *least) : std::nullopt;
    if (!figure || (row.ratioBound && !ratio)) return fail(row.what + ": not measured");

    const auto withUnit = [&row](double value) {
        return row.unit.empty() ? shown(value) : shown(value) + ' ' + row.unit;
    };
    std::string bound;
    bool isWithin = true;
    if (row.bound) {
        bound = withUnit(*row.bound);
        isWithin = *figure <= *row.bound;
    } else if (row.ratioBound) {
        bound = shown(*row.ratioBound) + " times";
        isWithin = *ratio <= *row.ratioBound;
    }
    if (!bound.empty()) bound += isWithin ? ", kept" : ", BROKEN";
    isGood_ = isGood_ && isWithin;
    lines_.push_back({row.what, withUnit(*figure), spreadOf(row.samples),
                      least ? row.beside->what + ", " + shown(*least) : "", ratio ? shown(*ratio) : "",
                      bound});
    std::fprintf(stderr, "%s: %s %s\n", lines_.back()[0].c_str(), lines_.back()[1].c_str(), bound.c_str());
}

void FigureTable::fail(const std::string& what) {
    isGood_ = false;
    lines_.push_back({what, "", "", "", "", "FAILED"});
    std::fprintf(stderr, "%s\n", what.c_str());
}

void FigureTable::print() const {
    std::vector<std::vector<std::string>> all{{"what", "median", "spread", "beside", "times", "bound"}};
    all.insert(all.end(), lines_.begin(), lines_.end());
    std::vector<std::size_t> widths(all.front().size());
    for (const auto& line : all) {
        for (std::size_t column = 0; column < widths.size(); ++column)
            widths[column] = std::max(widths[column], line[column].size());
    }
    const auto put = [&widths](const std::vector<std::string>& line, char filling) {
        for (std::size_t column = 0; column < widths.size(); ++column)
            std::printf("| %s%s ", line[column].c_str(),
                        std::string(widths[column] - line[column].size(), filling).c_str());
        std::printf("|\n");
    };
    put(all.front(), ' ');
    put(std::vector<std::string>(widths.size()), '-');
    for (std::size_t line = 1; line < all.size(); ++line)
        put(all[line], ' ');
    std::fflush(stdout);
}

}  // namespace norvane
