#include "web/served_folder.h"

#include "base/text.h"

#include "support/run_program.h"
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace {

const std::string kService = OMBRELUNE_SOURCE_FOLDER "/tools/service/serve";

// A line of the service's output; it flushes the line once it listens.
std::string ReadLine(int descriptor) {
    std::string line;
    for (char c = 0; read(descriptor, &c, 1) == 1 && c != '\n';) {
        line += c;
    }
    return line;
}

} // namespace

ServedFolder::~ServedFolder() {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
}

void ServedFolder::AddMember(const std::string& name, std::string_view password,
                             const std::string& account) const {
    const TemporaryFolder input; // the service reads a password from its input
    const std::string file = input.Write("password", password).string();
    const std::string script = R"(exec "$0" "$1" "$2" --add-member "$3" --account "$4" <"$5")";
    const PROGRAM_RESULT result =
        RunProgram("/bin/sh", {"-c", script, OMBRELUNE_PYTHON, kService, folder.Path().string(),
                               name, account, file});
    if (result.exitCode != 0) {
        throw std::runtime_error(result.error);
    }
}

void ServedFolder::Start(const std::vector<std::string>& options) {
    std::vector<std::string> words = {OMBRELUNE_PYTHON, kService, folder.Path().string(),
                                      "--port",         "0",      "--quiet"};
    words.insert(words.end(), options.begin(), options.end());
    std::vector<char*> pointers;
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    process = fork();
    if (process == 0) {
        dup2(ends[1], STDOUT_FILENO);
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
    close(ends[1]);
    const std::string line = ReadLine(ends[0]);
    close(ends[0]);
    const size_t at = line.find("http://");
    if (at == std::string::npos) {
        throw std::runtime_error("the service did not start: " + line);
    }
    address = WideFromUtf8(line.substr(at));
}

SERVICE_ADDRESSES ServedFolder::Addresses() const {
    return {address, address};
}
