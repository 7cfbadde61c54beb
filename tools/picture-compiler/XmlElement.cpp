#include "XmlElement.h"

#include <algorithm>

#include "Complaint.h"

namespace norvane {
namespace {

// Deeper nesting is a mistake in the file, and no reason to run out of stack.
constexpr int kDeepest = 32;

bool isBlank(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == ':';
}

class Parser {
 public:
    explicit Parser(std::string_view text) : rest_(text) {}

    XmlElement document() {
        if (rest_.substr(0, 5) == "<?xml") skipPast("?>");
        skipBlanksAndComments();
        XmlElement root = element(0);
        skipBlanksAndComments();
        if (!rest_.empty()) complain("nothing may follow the outermost element");
        return root;
    }

 private:
    XmlElement element(int depth) {
        if (depth > kDeepest) complain("nested too deeply");
        expect("<");
        XmlElement made;
        made.line = line_;
        made.name = name();
        for (;;) {
            const bool isApart = skipBlanks();
            if (take("/>")) return made;
            if (take(">")) break;
            if (!isApart) complain("attributes are parted by blanks");
            made.attributes.push_back(attribute(made));
        }
        for (;;) {
            skipBlanksAndComments();
            if (take("</")) {
                if (name() != made.name) complain("this does not close \"" + made.name + '"');
                skipBlanks();
                expect(">");
                return made;
            }
            made.children.push_back(element(depth + 1));
        }
    }

    XmlElement::Attribute attribute(const XmlElement& owner) {
        XmlElement::Attribute made;
        made.name = name();
        if (owner.attribute(made.name)) complain("\"" + made.name + "\" is given twice");
        expect("=");
        expect("\"");
        const std::size_t end = std::min(rest_.find('"'), rest_.size());
        made.value = rest_.substr(0, end);
        if (made.value.find_first_of("<&") != std::string::npos) complain("no entities or tags in values");
        advance(end);
        expect("\"");
        return made;
    }

    std::string name() {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), isNameCharacter);
        if (end == rest_.begin()) complain("a name is missing");
        const auto length = static_cast<std::size_t>(end - rest_.begin());
        std::string made(rest_.substr(0, length));
        advance(length);
        return made;
    }

    void skipBlanksAndComments() {
        for (;;) {
            skipBlanks();
            if (!rest_.starts_with("<!--")) return;
            skipPast("-->");
        }
    }
    // Whether there were any.
    bool skipBlanks() {
        const auto end = std::find_if_not(rest_.begin(), rest_.end(), isBlank);
        const auto length = static_cast<std::size_t>(end - rest_.begin());
        advance(length);
        return length > 0;
    }
    void skipPast(std::string_view end) {
        const std::size_t at = rest_.find(end);
        if (at == std::string_view::npos) complain("\"" + std::string(end) + "\" is missing");
        advance(at + end.size());
    }
    bool take(std::string_view text) {
        if (!rest_.starts_with(text)) return false;
        advance(text.size());
        return true;
    }
    void expect(std::string_view text) {
        if (!take(text)) complain("\"" + std::string(text) + "\" is missing");
    }
    void advance(std::size_t length) {
        const std::string_view passed = rest_.substr(0, length);
        line_ += static_cast<std::size_t>(std::count(passed.begin(), passed.end(), '\n'));
        rest_.remove_prefix(length);
    }
    [[noreturn]] void complain(const std::string& what) const { throw Complaint(line_, what); }

    std::string_view rest_;
    std::size_t line_ = 1;
};

}  // namespace

const std::string* XmlElement::attribute(std::string_view wanted) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const Attribute& candidate) { return candidate.name == wanted; });
    return found == attributes.end() ? nullptr : &found->value;
}

XmlElement parsedXml(std::string_view text) {
    return Parser(text).document();
}

}  // namespace norvane
