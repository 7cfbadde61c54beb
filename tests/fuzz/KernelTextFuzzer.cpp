#include <algorithm>
#include <limits>

#include "platform/linux/KernelText.h"
#include "Property.h"

namespace norvane {
namespace {

bool isBlank(char byte) {
    return byte == ' ' || byte == '\t';
}

void checkLines(std::string_view text) {
    std::string_view rest = text;
    std::string together;
    while (!rest.empty()) {
        const std::string_view line = takeLine(rest);
        require(line.find('\n') == std::string_view::npos, "a line has no newline in it");
        together += line;
        if (together.size() < text.size()) together += '\n';
    }
    require(together == text, "the lines together are the text");
    require(takeLine(rest).empty(), "after the last line there is none");
}

void checkWords(std::string_view text) {
    std::string_view rest = text;
    std::string together;
    for (;;) {
        const std::string_view word = takeWord(rest);
        if (word.empty()) break;
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
    std::string_view word = text;
    require(number ? rest.size() < text.size() : rest == text, "what is no number stays");
    require(number == parseNumber(takeWord(word)) || number == std::nullopt, "a number is a word");
    if (number) require(parseNumber(std::to_string(*number)) == number, "a number survives printing");

    const auto whole = parseNumber(text);
    const auto withSign = parseSignedNumber(text);
    if (withSign) require(parseSignedNumber(std::to_string(*withSign)) == withSign, "so does a negative one");
    if (whole && *whole <= std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
        require(withSign && *withSign >= 0 && static_cast<std::uint64_t>(*withSign) == *whole,
                "a number without a sign is one that may have a sign");
    }

    const auto hundredths = parseHundredths(text);
    const auto beforePoint = parseNumber(text.substr(0, text.find('.')));
    if (hundredths) {
        require(beforePoint.has_value(), "hundredths begin with a whole number");
        require(*hundredths / 100 == *beforePoint || *hundredths == std::numeric_limits<std::uint64_t>::max(),
                "hundredths are of that number");
    }

    for (const std::string_view prefix : {"cpu", ""}) {
        const auto after = numberAfter(prefix, text, 4000);
        if (!after) continue;
        require(text.starts_with(prefix) && *after <= 4000, "a name's number is within its bound");
        require(numberAfter(prefix, text) == after, "and the same within a wider one");
    }
}

void checkTrimming(std::string_view text) {
    const std::string_view inner = trimmed(text);
    require(trimmed(inner) == inner, "what is trimmed stays as it is");
    require(inner.empty() ||
                (inner.data() >= text.data() && inner.data() + inner.size() <= text.data() + text.size()),
            "trimming takes a part of the text");

    const std::string line = collapsed(text);
    require(collapsed(line) == line, "what is collapsed stays as it is");
    require(!line.starts_with(' ') && !line.ends_with(' ') && line.find("  ") == std::string::npos,
            "one blank between two words, and none elsewhere");
    require(std::none_of(line.begin(), line.end(),
                         [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }),
            "no control byte is left");
}

}  // namespace
}  // namespace norvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = norvane::textOf(data, size);
    norvane::checkLines(text);
    norvane::checkWords(text);
    norvane::checkNumbers(text);
    norvane::checkTrimming(text);
    return 0;
}
