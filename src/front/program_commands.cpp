#include "front/program_commands.h"

#include <SDL_scancode.h>

namespace {

// F3 changes which part of a machine's picture fills the window. The room's one flag is its lamp; that has F4, which acts
// while walking too, as that is when the room is seen.
constexpr PROGRAM_KEY kKeys[] = {
    {SDL_SCANCODE_F2,     false, false, ProgramCommand::kToggleStatistics,   "F2",           "statistics"   },
    {SDL_SCANCODE_F3,     false, false, ProgramCommand::kToggleCrop,         "F3",           "whole picture"},
    {SDL_SCANCODE_F4,     false, true,  ProgramCommand::kToggleCeilingLight, "F4",           "ceiling light"},
    {SDL_SCANCODE_F5,     false, false, ProgramCommand::kToggleLinear,       "F5",           "smooth pixels"},
    {SDL_SCANCODE_F6,     false, false, ProgramCommand::kNextScaler,         "F6",           "next scaler"  },
    {SDL_SCANCODE_F11,    false, false, ProgramCommand::kToggleFullScreen,   "F11",          "full screen"  },
    {SDL_SCANCODE_RETURN, true,  true,  ProgramCommand::kToggleFullScreen,   "Alt + Return",
     "full screen"                                                                                          },
};

} // namespace

std::span<const PROGRAM_KEY> ProgramKeys() {
    return kKeys;
}
