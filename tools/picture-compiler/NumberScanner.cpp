#include "NumberScanner.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "Complaint.h"

namespace norvane {
namespace {

// Far beyond any grid, and far from where sums of squares overflow.
constexpr double kLargest = 1e6;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

}  // namespace

bool NumberScanner::isAtEnd() {
    skipBlanks();
    return rest_.empty();
}

bool NumberScanner::isAtNumber() {
    skipBlanks();
    return numberLength() > 0;
}

double NumberScanner::number() {
    skipBlanks();
    const std::size_t length = numberLength();
    if (length == 0) complain("a number is missing before \"" + std::string(rest_.substr(0, 12)) + '"');
    const double value = std::strtod(std::string(rest_.substr(0, length)).c_str(), nullptr);
    if (!(std::abs(value) <= kLargest)) complain("a number is too large");
    rest_.remove_prefix(length);
    skipSeparator();
    return value;
}

double NumberScanner::length() {
    const double value = number();
    if (value < 0) complain("a length is negative");
    return value;
}

bool NumberScanner::flag() {
    skipBlanks();
    if (rest_.empty() || (rest_.front() != '0' && rest_.front() != '1')) complain("a flag is 0 or 1");
    const bool value = rest_.front() == '1';
    rest_.remove_prefix(1);
    skipSeparator();
    return value;
}

char NumberScanner::letter() {
    skipBlanks();
    if (rest_.empty()) complain("something is missing at the end");
    const char found = rest_.front();
    rest_.remove_prefix(1);
    return found;
}

bool NumberScanner::take(std::string_view text) {
    skipBlanks();
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
}

std::string_view NumberScanner::word() {
    skipBlanks();
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), isLetter);
    const auto length = static_cast<std::size_t>(end - rest_.begin());
    const std::string_view found = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return found;
}

void NumberScanner::complain(const std::string& what) const {
    throw Complaint(line_, what);
}

void NumberScanner::skipBlanks() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(" \n\t\r"), rest_.size()));
}

void NumberScanner::skipSeparator() {
    skipBlanks();
    if (!rest_.starts_with(',')) return;
    rest_.remove_prefix(1);
    if (!isAtNumber()) complain("a number is missing behind a comma");
}

// How many characters belong to the number that comes next; 0 where none does.
std::size_t NumberScanner::numberLength() const {
    std::size_t at = 0;
    const auto is = [&](std::string_view any) {
        return at < rest_.size() && any.find(rest_[at]) != std::string_view::npos;
    };
    const auto digits = [&] {
        const std::size_t first = at;
        while (at < rest_.size() && isDigit(rest_[at]))
            ++at;
        return at - first;
    };
    if (is("+-")) ++at;
    std::size_t count = digits();
    if (is(".")) {
        ++at;
        count += digits();
    }
    if (count == 0) return 0;
    const std::size_t withoutExponent = at;
    if (is("eE")) {
        ++at;
        if (is("+-")) ++at;
        if (digits() == 0) at = withoutExponent;
    }
    return at;
}

double onlyNumber(std::string_view text, std::size_t line) {
    NumberScanner scanner(text, line);
    const double value = scanner.number();
    if (!scanner.isAtEnd()) scanner.complain("\"" + std::string(text) + "\" is not a number");
    return value;
}

}  // namespace norvane
