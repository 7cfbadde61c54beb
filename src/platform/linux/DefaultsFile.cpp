#include "platform/linux/DefaultsFile.h"

#include <glib.h>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/linux/KernelText.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr std::string_view kGroup = "[defaults]";
constexpr std::string_view kByteOrderMark = "\xef\xbb\xbf";
constexpr std::string_view kFileBlanks = " \t\r\n";

bool isUtf8(std::string_view text) {
    return g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE;
}

// One line with its line end, and what it is.
struct Line {
    std::string_view text;
    bool isInGroup = false;  // its heading included
    std::string_view key;    // none where the line assigns nothing
    std::string_view value;
};

void readAssignment(std::string_view content, Line& line) {
    const auto equals = content.find('=');
    if (content.front() == '#' || content.front() == ';' || equals == std::string_view::npos) return;
    line.key = trimmed(content.substr(0, equals), kFileBlanks);
    line.value = trimmed(content.substr(equals + 1), kFileBlanks);
}

// Goes through a text line by line.
class LineReader {
 public:
    explicit LineReader(std::string_view text) : rest_(text) {}

    std::optional<Line> next() {
        if (rest_.empty()) return std::nullopt;
        const std::size_t newline = rest_.find('\n');
        Line line{rest_.substr(0, newline == std::string_view::npos ? newline : newline + 1), false, {}, {}};
        rest_.remove_prefix(line.text.size());
        std::string_view content = line.text;
        if (std::exchange(isFirst_, false) && content.starts_with(kByteOrderMark)) {
            content.remove_prefix(kByteOrderMark.size());
        }
        content = trimmed(content, kFileBlanks);
        if (content.starts_with('[')) {
            isInGroup_ = content == kGroup;
        } else if (isInGroup_ && !content.empty()) {
            readAssignment(content, line);
        }
        line.isInGroup = isInGroup_;
        return line;
    }

 private:
    std::string_view rest_;
    bool isFirst_ = true;
    bool isInGroup_ = false;
};

void appendUtf8(std::uint32_t codePoint, std::string& text) {
    std::array<char, 6> bytes{};
    const int length = g_unichar_to_utf8(codePoint, bytes.data());
    text.append(bytes.data(), static_cast<std::size_t>(length));
}

// Reads the inside of a quoted string, one character after another.
class QuotedString {
 public:
    // The text between the quotes, which are the first and the last character of `text`.
    static std::optional<std::string> parse(std::string_view text) {
        if (text.size() < 2 || text.front() != '"') return std::nullopt;
        QuotedString string(text.substr(1));
        return string.read();
    }

 private:
    explicit QuotedString(std::string_view rest) : rest_(rest) {}

    std::optional<std::string> read() {
        while (!rest_.empty()) {
            const char next = take();
            if (next == '"') return rest_.empty() ? std::optional(std::move(result_)) : std::nullopt;
            const auto byte = static_cast<unsigned char>(next);
            if (byte < 0x20) return std::nullopt;
            if (next != '\\') {
                result_ += next;
            } else if (!readEscape()) {
                return std::nullopt;
            }
        }
        return std::nullopt;
    }

    char take() {
        const char next = rest_.front();
        rest_.remove_prefix(1);
        return next;
    }

    bool readEscape() {
        constexpr std::string_view kEscapes = "\"\\/bfnrt";
        constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
        if (rest_.empty()) return false;
        const char escape = take();
        if (escape == 'u') return readCodePoint();
        const auto which = kEscapes.find(escape);
        if (which == std::string_view::npos) return false;
        result_ += kMeanings[which];
        return true;
    }

    // After `\u`: a code point, of which large ones are a pair of surrogates.
    bool readCodePoint() {
        const auto first = takeHex();
        if (!first || (*first >= 0xdc00 && *first <= 0xdfff)) return false;
        if (*first < 0xd800 || *first > 0xdbff) {
            appendUtf8(*first, result_);
            return true;
        }
        if (!rest_.starts_with("\\u")) return false;
        rest_.remove_prefix(2);
        const auto second = takeHex();
        if (!second || *second < 0xdc00 || *second > 0xdfff) return false;
        appendUtf8(0x10000 + ((*first - 0xd800) << 10) + (*second - 0xdc00), result_);
        return true;
    }

    std::optional<std::uint32_t> takeHex() {
        constexpr std::size_t kDigits = 4;
        if (rest_.size() < kDigits) return std::nullopt;
        std::uint32_t value = 0;
        const char* const end = rest_.data() + kDigits;
        const auto [stop, error] = std::from_chars(rest_.data(), end, value, 16);
        if (error != std::errc{} || stop != end) return std::nullopt;
        rest_.remove_prefix(kDigits);
        return value;
    }

    std::string_view rest_;
    std::string result_;
};

std::optional<DefaultsValue> parseValue(std::string_view text) {
    if (text == "true") return DefaultsValue(true);
    if (text == "false") return DefaultsValue(false);
    if (text.starts_with('"')) {
        auto string = QuotedString::parse(text);
        return string ? std::optional<DefaultsValue>(std::move(*string)) : std::nullopt;
    }
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return DefaultsValue(number);
}

std::string written(double number) {
    std::array<char, 32> digits{};  // the longest is -2.2250738585072014e-308
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    return {digits.data(), result.ptr};
}

std::string written(const std::string& string) {
    constexpr std::string_view kHex = "0123456789abcdef";
    std::string text = "\"";
    for (const char each : string) {
        const auto byte = static_cast<unsigned char>(each);
        if (each == '"' || each == '\\') {
            text += {'\\', each};
        } else if (byte < 0x20) {
            text += "\\u00";
            text += {kHex[byte >> 4], kHex[byte & 0xf]};
        } else {
            text += each;
        }
    }
    return text += '"';
}

std::string written(bool isTrue) {
    return isTrue ? "true" : "false";
}

std::string assignment(std::string_view key, const DefaultsValue& value) {
    std::string text(key);
    text += '=';
    text += std::visit([](const auto& held) { return written(held); }, storable(value));
    return text;
}

// Whether a line with this key is read back as one.
bool canBeWritten(std::string_view key) {
    const auto isControl = [](char each) { return static_cast<unsigned char>(each) < 0x20; };
    return !key.empty() && key == trimmed(key, kFileBlanks) && key.find_first_of("#;[") != 0 &&
           key.find('=') == std::string_view::npos && std::none_of(key.begin(), key.end(), isControl) &&
           isUtf8(key);
}

// The line end of this line: "\n", "\r\n", or none at the end of the file.
std::string_view lineEndOf(std::string_view line) {
    if (line.ends_with("\r\n")) return line.substr(line.size() - 2);
    if (line.ends_with('\n')) return line.substr(line.size() - 1);
    return {};
}

// Puts changes into lines that are already there, and remembers which found a place.
class Rewriting {
 public:
    Rewriting(std::string_view text, const DefaultsChanges& changes) : changes_(changes) {
        LineReader reader(text);
        while (const auto line = reader.next()) {
            if (!line->key.empty()) lastLineOf_[line->key] = lines_.size();
            lines_.push_back(*line);
            if (line->isInGroup && !trimmed(line->text, kFileBlanks).empty()) endOfGroup_ = lines_.size();
        }
    }

    std::string result() {
        for (std::size_t index = 0; index < lines_.size(); ++index) {
            if (index == endOfGroup_) appendNewKeys();
            appendLine(index);
        }
        if (endOfGroup_ >= lines_.size()) appendNewKeys();
        return std::move(text_);
    }

 private:
    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

    void appendLine(std::size_t index) {
        const Line& line = lines_[index];
        const auto change = line.key.empty() ? changes_.end() : changes_.find(line.key);
        if (change == changes_.end()) {
            text_ += line.text;
        } else if (change->second && lastLineOf_.find(line.key)->second == index) {
            text_ += assignment(change->first, *change->second);
            text_ += lineEndOf(line.text);
        }
    }

    void appendNewKeys() {
        bool isHeadingThere = endOfGroup_ != kNowhere;
        for (const auto& [key, value] : changes_) {
            if (!value || !canBeWritten(key) || lastLineOf_.contains(key)) continue;
            if (!text_.empty() && !text_.ends_with('\n')) text_ += '\n';
            if (!std::exchange(isHeadingThere, true)) {
                if (!text_.empty()) text_ += '\n';
                text_ += kGroup;
                text_ += '\n';
            }
            text_ += assignment(key, *value);
            text_ += '\n';
        }
    }

    std::vector<Line> lines_;
    const DefaultsChanges& changes_;
    std::map<std::string_view, std::size_t> lastLineOf_;
    std::size_t endOfGroup_ = kNowhere;  // after its last line that is not blank
    std::string text_;
};

}  // namespace

DefaultsMap parseDefaults(std::string_view text) {
    DefaultsMap map;
    LineReader reader(text);
    while (const auto line = reader.next()) {
        if (line->key.empty() || !isUtf8(line->text)) continue;
        if (auto value = parseValue(line->value))
            map.insert_or_assign(std::string(line->key), std::move(*value));
    }
    return map;
}

std::string rewriteDefaults(std::string_view text, const DefaultsChanges& changes) {
    return Rewriting(text, changes).result();
}

bool holdSame(const DefaultsMap& one, const DefaultsMap& other) {
    const auto isSame = [](const auto& entry, const auto& otherEntry) {
        const auto* const number = std::get_if<double>(&entry.second);
        const auto* const otherNumber = std::get_if<double>(&otherEntry.second);
        const bool areNoNumbers = number && otherNumber && std::isnan(*number) && std::isnan(*otherNumber);
        return entry.first == otherEntry.first && (areNoNumbers || entry.second == otherEntry.second);
    };
    return std::equal(one.begin(), one.end(), other.begin(), other.end(), isSame);
}

DefaultsValue storable(DefaultsValue value) {
    auto* const string = std::get_if<std::string>(&value);
    if (string == nullptr) return value;
    return repairedUtf8(*string);
}

}  // namespace norvane
