#include "platform/linux/KernelText.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

constexpr bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

template <typename IsEnd>
std::string_view withoutEnds(std::string_view text, IsEnd&& isEnd) {
    while (!text.empty() && isEnd(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isEnd(text.back()))
        text.remove_suffix(1);
    return text;
}

template <typename Number>
std::optional<Number> wholeNumber(std::string_view word) {
    Number number{};
    const char* const end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return number;
}

}  // namespace

std::string_view takeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::string_view takeWord(std::string_view& line) {
    const char* const begin = std::find_if_not(line.data(), line.data() + line.size(), isBlank);
    const char* const end = std::find_if(begin, line.data() + line.size(), isBlank);
    const std::string_view word(begin, static_cast<std::size_t>(end - begin));
    line.remove_prefix(static_cast<std::size_t>(end - line.data()));
    return word;
}

std::optional<std::uint64_t> takeNumber(std::string_view& line) {
    std::string_view rest = line;
    const auto number = wholeNumber<std::uint64_t>(takeWord(rest));
    if (number) line = rest;
    return number;
}

std::string_view trimmed(std::string_view text) {
    return withoutEnds(
        text, [](char byte) { return isBlank(byte) || byte == '\r' || byte == '\n' || byte == '\0'; });
}

std::string_view trimmed(std::string_view text, std::string_view ends) {
    return withoutEnds(text, [ends](char byte) { return ends.find(byte) != std::string_view::npos; });
}

std::string collapsed(std::string_view text) {
    std::string result;
    bool blankBefore = false;
    for (const char byte : text) {
        if (static_cast<unsigned char>(byte) <= ' ' || byte == '\x7f') {
            blankBefore = !result.empty();
            continue;
        }
        if (blankBefore) result += ' ';
        blankBefore = false;
        result += byte;
    }
    return result;
}

std::optional<std::uint64_t> parseNumber(std::string_view text) {
    return wholeNumber<std::uint64_t>(trimmed(text));
}

std::optional<std::int64_t> parseSignedNumber(std::string_view text) {
    return wholeNumber<std::int64_t>(trimmed(text));
}

std::optional<std::uint64_t> parseHundredths(std::string_view word) {
    const std::size_t point = std::min(word.find('.'), word.size());
    const auto whole = wholeNumber<std::uint64_t>(word.substr(0, point));
    if (!whole) return std::nullopt;
    std::uint64_t hundredths = 0;
    if (point < word.size()) {
        const std::string_view digits = word.substr(point + 1);
        if (digits.empty() || digits.find_first_not_of("0123456789") != std::string_view::npos) {
            return std::nullopt;
        }
        hundredths = static_cast<std::uint64_t>(digits[0] - '0') * 10;
        if (digits.size() > 1) hundredths += static_cast<std::uint64_t>(digits[1] - '0');
    }
    return saturatedSum(saturatedProduct(*whole, 100), hundredths);
}

std::optional<unsigned> numberAfter(std::string_view prefix, std::string_view name, unsigned largest) {
    if (name.substr(0, prefix.size()) != prefix) return std::nullopt;
    const auto number = wholeNumber<unsigned>(name.substr(prefix.size()));
    if (!number || *number > largest) return std::nullopt;
    return number;
}

}  // namespace norvane
