#include "support/run_program.h"

#include "support/temporary_folder.h"
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace {

void Redirect(const std::filesystem::path& path, int descriptor) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0 || dup2(file, descriptor) < 0) {
        _exit(126);
    }
}

std::string Text(const TemporaryFolder& folder, std::string_view name) {
    const std::vector<uint8_t> bytes = folder.Read(name);
    return {bytes.begin(), bytes.end()};
}

} // namespace

PROGRAM_RESULT RunProgram(const std::string& program, const std::vector<std::string>& arguments,
                          unsigned longestSeconds) {
    const TemporaryFolder folder;
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);

    const std::filesystem::path output = folder.Path() / "output";
    const std::filesystem::path error = folder.Path() / "error";
    const pid_t child = fork();
    if (child < 0) {
        throw std::runtime_error("fork failed");
    }
    if (child == 0) {
        alarm(longestSeconds); // survives exec and ends the program
        Redirect(output, STDOUT_FILENO);
        Redirect(error, STDERR_FILENO);
        execv(program.c_str(), pointers.data());
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    PROGRAM_RESULT result;
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    result.output = Text(folder, "output");
    result.error = Text(folder, "error");
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) {
        result.error +=
            "ended after " + std::to_string(longestSeconds) + " seconds: " + words.front();
        for (const std::string& argument : arguments) {
            result.error += " " + argument;
        }
    }
    return result;
}
