#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <string_view>

#include "scenario/Objection.h"
#include "scenario/ScenarioPlayer.h"

// Plays a scenario and prints the transcript to standard output; tools/README.md tells what it may hold.
int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: norvane-scenario FILE\n";
        return 1;
    }
    const std::string file = argv[1];
    std::ifstream lines(file, std::ios::binary);
    norvane::ScenarioPlayer player([](std::string_view line) { std::cout << line << '\n'; });
    std::size_t number = 0;
    try {
        for (std::string line; std::getline(lines, line);) {
            ++number;
            player.play(line);
        }
    } catch (const norvane::Objection& objection) {
        std::cout.flush();
        std::cerr << file << ':' << number << ": " << objection.what() << '\n';
        return 1;
    }
    // A folder can be opened, too, and with some libraries reads as an empty file.
    if (!lines.eof() || std::filesystem::is_directory(file)) {
        std::cerr << file << ": cannot be read\n";
        return 1;
    }
    std::cout.flush();
    if (std::cout) return 0;
    std::cerr << "the transcript cannot be written\n";
    return 1;
}
