// Completion of the command line in a shell, as a script that the shell reads.
#pragma once

#include "front/tools/command_tree.h"

#include <string>

// For /usr/share/bash-completion/completions, or `source`.
[[nodiscard]] std::string BashCompletion(const COMMAND_TREE& program);
// For a folder of `$fpath`, as `_ombrelune`.
[[nodiscard]] std::string ZshCompletion(const COMMAND_TREE& program);
// For /usr/share/fish/vendor_completions.d, or `source`.
[[nodiscard]] std::string FishCompletion(const COMMAND_TREE& program);
