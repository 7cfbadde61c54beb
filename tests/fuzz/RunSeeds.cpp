// Stands in for libFuzzer where a target is built as a test: feeds it the inputs that are known, each once.
//
// usage: TARGET LIST, a file with the inputs' paths, one on each line

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    std::ifstream list(argc == 2 ? argv[1] : "");
    int count = 0;
    for (std::string path; std::getline(list, path); ++count) {
        std::ifstream stream(path, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        if (!stream.is_open() || stream.bad()) {
            std::fprintf(stderr, "cannot read %s\n", path.c_str());
            return 1;
        }
        // The last name that is printed is the input that ended the program.
        std::fprintf(stderr, "%s\n", path.c_str());
        // A vector has nothing behind its last byte, where a string has a NUL.
        const std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
    if (count == 0) std::fprintf(stderr, "no inputs\n");
    return count == 0 ? 1 : 0;
}
