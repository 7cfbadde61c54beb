// Stands in for libFuzzer where the targets are built as tests: feeds one the inputs that are known, each
// once.
//
// usage: TARGETFuzzer LIST, a file with the inputs' paths, one on each line

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerInitialize(const int* count, char*** arguments);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    LLVMFuzzerInitialize(&argc, &argv);
    std::ifstream list(argc == 2 ? argv[1] : "");
    int count = 0;
    for (std::string path; std::getline(list, path); ++count) {
        // The last name that is printed is the input that ended the program.
        std::fprintf(stderr, "%s\n", path.c_str());
        std::ifstream stream(path, std::ios::binary);
        // A vector has nothing behind its last byte, where a string has a NUL.
        const std::vector<char> input{std::istreambuf_iterator<char>(stream), {}};
        if (!stream.is_open() || stream.bad()) return 1;
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    }
    if (count == 0) std::fprintf(stderr, "no inputs\n");
    return count == 0 ? 1 : 0;
}
