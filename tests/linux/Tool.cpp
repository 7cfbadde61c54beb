#include "Tool.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

namespace norvane {

int runTool(const std::string& name, const std::vector<std::string>& arguments) {
    const std::string program = NORVANE_SOURCE_DIR "/tools/" + name;
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    pid_t process = 0;
    if (::posix_spawn(&process, program.c_str(), nullptr, nullptr, pointers.data(), environ) != 0) return -1;
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace norvane
