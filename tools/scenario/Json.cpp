#include "scenario/Json.h"

#include <set>
#include <string>
#include <vector>

#include "scenario/Objection.h"

namespace norvane {
namespace {

// The parser itself takes the last one of two equal keys, and any depth.
class Watch {
 public:
    bool operator()(Json::parse_event_t event, const Json& parsed) {
        constexpr std::size_t kDeepest = 16;
        switch (event) {
            case Json::parse_event_t::object_start:
            case Json::parse_event_t::array_start:
                keys_.emplace_back();
                if (keys_.size() > kDeepest) throw Objection("is nested too deeply");
                break;
            case Json::parse_event_t::object_end:
            case Json::parse_event_t::array_end:
                keys_.pop_back();
                break;
            case Json::parse_event_t::key:
                if (!keys_.back().insert(parsed.get<std::string>()).second) {
                    throw Objection("says " + printedJson(parsed) + " twice");
                }
                break;
            case Json::parse_event_t::value:
                break;
        }
        return true;
    }

 private:
    std::vector<std::set<std::string>> keys_;
};

}  // namespace

Json parsedJson(std::string_view text) {
    Watch watch;
    try {
        return Json::parse(text, [&watch](int, Json::parse_event_t event, const Json& parsed) {
            return watch(event, parsed);
        });
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
