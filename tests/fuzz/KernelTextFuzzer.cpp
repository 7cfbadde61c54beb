#include <algorithm>
#include <cstdint>

#include "platform/linux/KernelText.h"
#include "Property.h"

namespace norvane {
namespace {

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

void checkLinesAndWords(std::string_view text) {
    std::string_view rest = text;
    std::string together;
    while (!rest.empty()) {
        const std::string_view line = takeLine(rest);
        require(line.find('\n') == std::string_view::npos, "a line has no newline in it");
        together += line;
        if (together.size() < text.size()) together += '\n';
    }
    require(together == text, "the lines together are the text");

    rest = text;
    together.clear();
    for (std::string_view word = takeWord(rest); !word.empty(); word = takeWord(rest)) {
        require(std::none_of(word.begin(), word.end(), isBlank), "a word has no blank in it");
        require(rest.empty() || isBlank(rest.front()), "a word ends at a blank");
        together += word;
    }
    require(rest.empty(), "after the last word nothing is left");
    std::string want(text);
    std::erase_if(want, isBlank);
    require(together == want, "the words together are the text without its blanks");
}

void checkNumbers(std::string_view text) {
    std::string_view rest = text;
    const auto number = takeNumber(rest);
    require(number ? rest.size() < text.size() : rest == text, "what is no number stays");
    require(!number || parseNumber(std::to_string(*number)) == number, "a number survives printing");
    const auto whole = parseNumber(text);
    const auto withSign = parseSignedNumber(text);
    require(!withSign || parseSignedNumber(std::to_string(*withSign)) == withSign, "so does a negative one");
    require(!whole || *whole > INT64_MAX || (withSign && static_cast<std::uint64_t>(*withSign) == *whole),
            "a number without a sign is one that may have a sign");
    if (const auto hundredths = parseHundredths(text)) {
        const auto beforePoint = parseNumber(text.substr(0, text.find('.')));
        require(beforePoint && (*hundredths / 100 == *beforePoint || *hundredths == UINT64_MAX),
                "hundredths are of the whole number that they begin with");
    }
    for (const std::string_view prefix : {"cpu", ""}) {
        const auto after = numberAfter(prefix, text, 4000);
        require(!after || (text.starts_with(prefix) && *after <= 4000),
                "a name's number is within its bound");
        require(!after || numberAfter(prefix, text) == after, "and the same within a wider one");
    }
}

}  // namespace

void check(std::string_view text) {
    checkLinesAndWords(text);
    checkNumbers(text);
    const std::string_view inner = trimmed(text);
    require(trimmed(inner) == inner, "what is trimmed stays as it is");
    require(inner.empty() || text.find(inner) != std::string_view::npos, "trimming takes a part of the text");
    const std::string line = collapsed(text);
    require(collapsed(line) == line, "what is collapsed stays as it is");
    require(!line.starts_with(' ') && !line.ends_with(' ') && line.find("  ") == std::string::npos,
            "one blank between two words, and none elsewhere");
    require(std::none_of(line.begin(), line.end(),
                         [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }),
            "no control byte is left");
}

}  // namespace norvane
