// `manual` and `completion`: what packages install beside the program, written by the program itself.
#include "base/version.h"
#include "front/tools/command_tree.h"
#include "front/tools/commands.h"
#include "front/tools/completion.h"
#include "front/tools/manual_page.h"

#include <cstdio>

namespace {

int Print(const std::string& text) {
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    return written && std::fflush(stdout) == 0 ? kExitDone : kExitFailed;
}

} // namespace

int ManualCommand(const CLI::App& program) {
    return Print(ManualPage(ReadCommandTree(program), {ProgramVersion(), ProgramVersionDate()}));
}

int CompletionCommand(const CLI::App& program, const std::string& shell) {
    const COMMAND_TREE tree = ReadCommandTree(program);
    if (shell == "bash") {
        return Print(BashCompletion(tree));
    }
    return Print(shell == "zsh" ? ZshCompletion(tree) : FishCompletion(tree));
}
