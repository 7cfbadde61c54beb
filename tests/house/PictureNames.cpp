#include "PictureNames.h"

#include <regex>

namespace norvane {
namespace {

std::string withoutComments(const std::string& source) {
    static const std::regex literalOrComment(R"re(("(?:[^"\\\n]|\\.)*")|//[^\n]*|/\*[^*]*\*/)re");
    return std::regex_replace(source, literalOrComment, "$1 ");
}

void addLiterals(const std::string& code, std::set<std::string>& names) {
    static const std::regex literal(R"re('"'|"((?:[^"\\\n]|\\.)*)")re");
    for (std::sregex_iterator found(code.begin(), code.end(), literal), end; found != end; ++found) {
        if ((*found)[1].matched) names.insert((*found)[1]);
    }
}

std::set<std::string> namesFor(const std::string& code, const std::string& word) {
    // "symbol" alone, or at the end of a longer word as in "DrawSymbol".
    std::string capital = word;
    capital[0] = static_cast<char>(word[0] - 'a' + 'A');
    if (code.find(word) == std::string::npos && code.find(capital) == std::string::npos) return {};
    const std::string name = "(?:\\b" + word + "|\\w" + capital + ")(?:Named|Name|Of)?_?\\s*";
    const std::regex given(name + "(?:=(?!=)|[({])([^,;{}]*)");
    const std::regex function("\n( *)[^\n]*" + name + R"re(\([^\n]*\{)re");
    static const std::regex returned(R"re(\breturn\b([^,;]*))re");
    std::set<std::string> names;
    for (std::sregex_iterator found(code.begin(), code.end(), given), end; found != end; ++found)
        addLiterals((*found)[1], names);
    for (std::sregex_iterator found(code.begin(), code.end(), function), end; found != end; ++found) {
        const std::string rest = found->suffix();
        const std::string line = rest.substr(0, rest.find('\n'));
        const bool isOneLine = line.find('}') != std::string::npos;
        const std::string body = isOneLine ? line : rest.substr(0, rest.find('\n' + (*found)[1].str() + '}'));
        for (std::sregex_iterator each(body.begin(), body.end(), returned); each != end; ++each)
            addLiterals((*each)[1], names);
    }
    return names;
}

}  // namespace

PictureNames pictureNamesIn(const std::string& source) {
    const std::string code = withoutComments(source);
    return {namesFor(code, "symbol"), namesFor(code, "image"), namesFor(code, "icon")};
}

std::set<std::string> literalsIn(const std::string& source) {
    std::set<std::string> literals;
    addLiterals(withoutComments(source), literals);
    return literals;
}

}  // namespace norvane
