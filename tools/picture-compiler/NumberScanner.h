#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// Reads numbers out of an attribute as drawings write them: parted by blanks, by one comma, or by nothing
// where a sign or a second decimal point shows that another one begins.
class NumberScanner {
 public:
    // `line` is where complaints say the text is.
    NumberScanner(std::string_view text, std::size_t line) : rest_(text), line_(line) {}

    // Whether nothing but blanks is left.
    bool isAtEnd();
    // Whether a number comes next.
    bool isAtNumber();
    // Throws a `Complaint` where there is none, or where it is beyond all use.
    double number();
    // A number that is 0 or more.
    double length();
    // 0 or 1, which may be written without a blank behind.
    bool flag();
    // The next character that is no blank, taken.
    char letter();
    // Takes the text if it comes next.
    bool take(std::string_view text);
    // A word of letters, possibly empty.
    std::string_view word();

    [[noreturn]] void complain(const std::string& what) const;

 private:
    void skipBlanks();
    void skipSeparator();
    std::size_t numberLength() const;

    std::string_view rest_;
    std::size_t line_;
};

// A text that is one number and nothing else.
double onlyNumber(std::string_view text, std::size_t line);

}  // namespace norvane
