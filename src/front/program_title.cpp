#include "front/program_title.h"

#include "base/version.h"

std::string ProgramTitle() {
    return std::string(kProgramName) + " " + ProgramVersion();
}

std::string PlayedTitle(const std::string& game, const std::string& machine) {
    std::string title = game;
    for (const std::string& part : {machine, std::string(kProgramName)}) {
        title += part.empty() ? "" : " - " + part;
    }
    return title;
}
