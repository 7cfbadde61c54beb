#pragma once

#include <cstdio>
#include <string>

namespace norvane {

// Says each figure beside its bound, and remembers whether all bounds were kept.
class Verdict {
 public:
    void judge(const std::string& what, double figure, const char* unit, double bound,
               const std::string& more = "") {
        const bool isWithin = figure <= bound;
        isGood_ = isGood_ && isWithin;
        std::printf("%-44s %8.2f %s, bound %.2f: %s%s\n", what.c_str(), figure, unit, bound,
                    isWithin ? "ok" : "OVER", more.c_str());
        std::fflush(stdout);
    }
    void tell(const std::string& what, double figure, const char* unit, const std::string& more = "") {
        std::printf("%-44s %8.2f %s%s\n", what.c_str(), figure, unit, more.c_str());
        std::fflush(stdout);
    }
    void fail(const std::string& what) {
        isGood_ = false;
        std::printf("%s\n", what.c_str());
        std::fflush(stdout);
    }
    bool isGood() const { return isGood_; }

 private:
    bool isGood_ = true;
};

}  // namespace norvane
