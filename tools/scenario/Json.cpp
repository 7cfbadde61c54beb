#include "scenario/Json.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "scenario/Objection.h"

namespace norvane {
namespace {

constexpr std::size_t kDeepest = 16;
// An object looks through its members for each one that it gets.
constexpr std::size_t kMostMembers = 10'000;

// Looks a text over before it is parsed: the parser itself takes the last one of two equal keys, and any
// depth. What is no JSON is the parser's to tell.
class Watch final : public nlohmann::json_sax<Json> {
 public:
    bool start_object(std::size_t) override { return enter(); }
    bool start_array(std::size_t) override { return enter(); }
    bool end_object() override { return leave(); }
    bool end_array() override { return leave(); }
    bool key(std::string& name) override {
        std::set<std::string>& keys = keys_.back();
        if (!keys.insert(name).second) throw Objection("says " + printedJson(name) + " twice");
        if (keys.size() > kMostMembers) throw Objection("has an object of too many members");
        return true;
    }

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(std::int64_t) override { return true; }
    bool number_unsigned(std::uint64_t) override { return true; }
    bool number_float(double, const std::string&) override { return true; }
    bool string(std::string&) override { return true; }
    bool binary(Json::binary_t&) override { return true; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::detail::exception&) override {
        return false;
    }

 private:
    bool enter() {
        keys_.emplace_back();
        if (keys_.size() > kDeepest) throw Objection("is nested too deeply");
        return true;
    }
    bool leave() {
        keys_.pop_back();
        return true;
    }

    std::vector<std::set<std::string>> keys_;
};

}  // namespace

Json parsedJson(std::string_view text) {
    Watch watch;
    Json::sax_parse(text, &watch);
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        throw Objection("is not JSON, at character " + std::to_string(error.byte));
    } catch (const Json::exception&) {
        throw Objection("has a number that is too large");
    }
}

std::string printedJson(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace norvane
