#include "Transcripts.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "scenario/Objection.h"
#include "scenario/ScenarioPlayer.h"

namespace norvane {

std::string contentsOf(const std::string& file) {
    std::ifstream stream(std::string(NORVANE_SOURCE_DIR) + '/' + file, std::ios::binary);
    std::string contents{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) throw std::runtime_error("cannot read " + file);
    return contents;
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> played(const std::string& scenario) {
    std::vector<std::string> printed;
    ScenarioPlayer player([&printed](std::string_view line) { printed.emplace_back(line); });
    std::size_t number = 0;
    for (const std::string& line : linesOf(scenario)) {
        ++number;
        try {
            player.play(line);
        } catch (const Objection& objection) {
            printed.push_back(std::to_string(number) + ": " + objection.what());
            break;
        }
    }
    return printed;
}

}  // namespace norvane
