#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

// What a program and its threads asked of the kernel, as `strace -f -o FILE` writes it down: a call on a
// line, or on two where others came in between. Any text can be read; what is no line of that kind is kept
// apart.
class SystemCallTrace {
 public:
    struct Call {
        std::string name;
        // As they are written: texts in quotes, flags with bars in between, structures in braces.
        std::vector<std::string> arguments;
        // "3", "-1 ENOENT (No such file or directory)"; "?" for one that never came back.
        std::string result;
        // The whole call as it is written, without the thread's number.
        std::string line;

        // Those arguments that are texts, without their quotes. Special characters stay escaped.
        std::vector<std::string> texts() const;
        // Whether any argument has this in it.
        bool mentions(std::string_view words) const;
    };

    explicit SystemCallTrace(std::string_view text);

    // In the order in which they came back or were given up.
    const std::vector<Call>& calls() const { return calls_; }
    const std::vector<std::string>& unreadable() const { return unreadable_; }
    // Of the program; none while it runs, -1 where a signal ended it.
    std::optional<int> exitStatus() const { return exitStatus_; }

    // A call without the thread's number.
    static std::optional<Call> parse(std::string_view line);

 private:
    bool take(int thread, std::string_view line);
    bool takeEnd(int thread, std::string_view line);
    // The call that the thread has begun does not come back.
    void giveUp(int thread);
    bool add(std::string_view line);

    std::vector<Call> calls_;
    std::vector<std::string> unreadable_;
    // The beginnings of calls that have not come back, by thread.
    std::map<int, std::string> begun_;
    // Its number is the program's.
    std::optional<int> firstThread_;
    std::optional<int> exitStatus_;
};

}  // namespace norvane
