#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

// An element with what stands inside of it. Drawings have no text between their tags.
struct XmlElement {
    struct Attribute {
        std::string name;
        std::string value;
    };

    std::string name;
    std::size_t line = 1;  // of its opening tag
    std::vector<Attribute> attributes;
    std::vector<XmlElement> children;

    // Null where there is no such attribute.
    const std::string* attribute(std::string_view wanted) const;
};

// The outermost element. Throws a `Complaint` about anything but tags, attributes, comments and one
// declaration at the start: there are no entities, instructions or text in our drawings.
XmlElement parsedXml(std::string_view text);

}  // namespace norvane
