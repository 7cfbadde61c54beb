#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace norvane {

// One #include line of a file.
struct Include {
    // Written from src/.
    std::string file;
    std::size_t line = 0;
    // As it stands between the quotes or the angle brackets.
    std::string target;
    bool isQuoted = false;
};

// The include lines of a file's text. One without quotes or brackets has an empty target.
std::vector<Include> includesOf(const std::string& file, const std::string& text);

// What is wrong with an include line, for people to read; none if it is right. `files` are all the files of
// src/, written from there.
std::optional<std::string> objectionTo(const Include& include, const std::set<std::string>& files);

// The files that include each other in a circle, and those that lead there, by what each file includes.
std::set<std::string> filesInCircles(std::map<std::string, std::set<std::string>> included);

}  // namespace norvane
