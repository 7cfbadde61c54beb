#include "PictureNames.h"

#include <algorithm>
#include <cctype>
#include <vector>

namespace norvane {
namespace {

struct Token {
    enum class Kind { word, literal, mark };
    Kind kind;
    std::string text;  // a literal's without its quotes
};

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

// Without comments, blanks and single characters in quotes. Raw literals are left out: no name is written so.
std::vector<Token> tokensOf(std::string_view source) {
    std::vector<Token> tokens;
    std::size_t at = 0;
    const auto from = [&](std::string_view text) { return source.substr(at).starts_with(text); };
    const auto skipPast = [&](std::string_view end) {
        const std::size_t found = source.find(end, at);
        at = found == std::string_view::npos ? source.size() : found + end.size();
    };
    const auto quoted = [&](char quote) {
        std::string text;
        for (++at; at < source.size() && source[at] != quote; ++at) {
            if (source[at] == '\\') text += source[at++];
            if (at < source.size()) text += source[at];
        }
        ++at;
        return text;
    };
    while (at < source.size()) {
        if (from("//")) {
            skipPast("\n");
        } else if (from("/*")) {
            skipPast("*/");
        } else if (from("R\"")) {
            const std::size_t parenthesis = std::min(source.find('(', at), source.size());
            const std::string end = ')' + std::string(source.substr(at + 2, parenthesis - at - 2)) + '"';
            at = parenthesis;
            skipPast(end);
        } else if (source[at] == '"') {
            tokens.push_back({Token::Kind::literal, quoted('"')});
        } else if (source[at] == '\'') {
            quoted('\'');
        } else if (isWordCharacter(source[at])) {
            // A quote within a number parts its digits.
            const bool isNumber = std::isdigit(static_cast<unsigned char>(source[at])) != 0;
            std::string word;
            while (at < source.size() && (isWordCharacter(source[at]) || (isNumber && source[at] == '\''))) {
                word += source[at++];
            }
            tokens.push_back({Token::Kind::word, std::move(word)});
        } else {
            if (std::isspace(static_cast<unsigned char>(source[at])) == 0) {
                tokens.push_back({Token::Kind::mark, std::string(1, source[at])});
            }
            ++at;
        }
    }
    return tokens;
}

// The set that a word's last part speaks of; null for any other word.
std::set<std::string> PictureNames::*setFor(std::string word) {
    for (const char* const ending : {"Named", "Name", "Of", "_"}) {
        if (word.ends_with(ending)) word.resize(word.size() - std::string_view(ending).size());
    }
    const auto ends = [&](std::string_view small, std::string_view large) {
        return word == small || word.ends_with(large);
    };
    if (ends("symbol", "Symbol")) return &PictureNames::symbols;
    if (ends("image", "Image")) return &PictureNames::images;
    if (ends("icon", "Icon")) return &PictureNames::icons;
    return nullptr;
}

class Reader {
 public:
    explicit Reader(std::string_view source) : tokens_(tokensOf(source)) {}

    PictureNames names() {
        for (std::size_t at = 0; at < tokens_.size(); ++at) {
            if (tokens_[at].kind != Token::Kind::word) continue;
            if (const auto set = setFor(tokens_[at].text)) read(at + 1, names_.*set);
        }
        return std::move(names_);
    }

 private:
    bool isMark(std::size_t at, std::string_view mark) const {
        return at < tokens_.size() && tokens_[at].kind == Token::Kind::mark && tokens_[at].text == mark;
    }
    bool isWord(std::size_t at, std::string_view word) const {
        return at < tokens_.size() && tokens_[at].kind == Token::Kind::word && tokens_[at].text == word;
    }

    void read(std::size_t at, std::set<std::string>& names) {
        const bool isGiven = isMark(at, "=") && !isMark(at + 1, "=");
        const bool isCalled = isMark(at, "(");
        if (isGiven || isCalled || isMark(at, "{")) takeUntilSeparator(at + 1, names);
        if (!isCalled) return;
        std::size_t next = afterBracket(at);
        while (isWord(next, "const") || isWord(next, "noexcept"))
            ++next;
        if (isMark(next, "{")) takeReturned(next, afterBracket(next), names);
    }

    // The literals from there to the next "," or ";" or the end of the brackets around.
    void takeUntilSeparator(std::size_t at, std::set<std::string>& names) {
        for (int depth = 0; at < tokens_.size(); ++at) {
            const Token& token = tokens_[at];
            if (token.kind == Token::Kind::literal) names.insert(token.text);
            if (token.kind != Token::Kind::mark) continue;
            if (depth == 0 && std::string_view(",;)}]").find(token.text) != std::string_view::npos) return;
            depth += change(token);
        }
    }

    void takeReturned(std::size_t at, std::size_t end, std::set<std::string>& names) {
        for (; at < end; ++at) {
            if (isWord(at, "return")) takeUntilSeparator(at + 1, names);
        }
    }

    // Behind the bracket that closes the one there.
    std::size_t afterBracket(std::size_t at) const {
        for (int depth = 0; at < tokens_.size(); ++at) {
            if (tokens_[at].kind != Token::Kind::mark) continue;
            depth += change(tokens_[at]);
            if (depth == 0) return at + 1;
        }
        return at;
    }

    static int change(const Token& mark) {
        if (std::string_view("([{").find(mark.text) != std::string_view::npos) return 1;
        return std::string_view(")]}").find(mark.text) != std::string_view::npos ? -1 : 0;
    }

    std::vector<Token> tokens_;
    PictureNames names_;
};

}  // namespace

PictureNames pictureNamesIn(std::string_view source) {
    return Reader(source).names();
}

std::set<std::string> literalsIn(std::string_view source) {
    std::set<std::string> literals;
    for (const Token& token : tokensOf(source)) {
        if (token.kind == Token::Kind::literal) literals.insert(token.text);
    }
    return literals;
}

}  // namespace norvane
