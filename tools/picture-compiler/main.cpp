#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "Complaint.h"
#include "Drawing.h"
#include "PictureSource.h"

using namespace norvane;

namespace {

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string contents{std::istreambuf_iterator<char>(stream), {}};
    if (!stream.is_open() || stream.bad()) throw std::runtime_error(file.string() + ": cannot be read");
    return contents;
}

}  // namespace

// norvane-picture-compiler OUTPUT --symbols FILE... --images FILE...
int main(int argc, char** argv) {
    try {
        const std::vector<std::string> arguments(argv + 1, argv + argc);
        std::vector<NamedPicture> symbols;
        std::vector<NamedPicture> images;
        PictureKind kind = PictureKind::symbol;
        bool isUnderstood = true;
        for (std::size_t at = 1; at < arguments.size(); ++at) {
            if (arguments[at] == "--symbols" || arguments[at] == "--images") {
                kind = arguments[at] == "--images" ? PictureKind::image : PictureKind::symbol;
                continue;
            }
            const std::filesystem::path file = arguments[at];
            try {
                (kind == PictureKind::symbol ? symbols : images)
                    .push_back({file.stem().string(), drawingIn(contentsOf(file), kind)});
            } catch (const Complaint& complaint) {
                // All files are looked at, so that one build tells of all mistakes.
                std::cerr << file.string() << ':' << complaint.line() << ": error: " << complaint.what()
                          << '\n';
                isUnderstood = false;
            }
        }
        if (!isUnderstood) return 1;
        if (symbols.empty() || images.empty()) {
            throw std::runtime_error("usage: OUTPUT --symbols FILE... --images FILE...");
        }
        const std::string source = pictureSource(std::move(symbols), std::move(images));
        std::ofstream output(arguments[0], std::ios::binary);
        output << source;
        output.close();
        if (!output) throw std::runtime_error(arguments[0] + ": cannot be written");
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "norvane-picture-compiler: " << error.what() << '\n';
        return 1;
    }
}
