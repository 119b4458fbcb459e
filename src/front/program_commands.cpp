#include "front/program_commands.h"

#include <SDL_scancode.h>

namespace {

constexpr PROGRAM_KEY kKeys[] = {
    {SDL_SCANCODE_F2,     false, false, ProgramCommand::kToggleStatistics  },
    {SDL_SCANCODE_F3,     false, false, ProgramCommand::kToggleCrop        },
    {SDL_SCANCODE_F4,     false, true,  ProgramCommand::kToggleCeilingLight},
    {SDL_SCANCODE_F5,     false, false, ProgramCommand::kToggleLinear      },
    {SDL_SCANCODE_F6,     false, false, ProgramCommand::kNextScaler        },
    {SDL_SCANCODE_F11,    false, false, ProgramCommand::kToggleFullScreen  },
    {SDL_SCANCODE_RETURN, true,  true,  ProgramCommand::kToggleFullScreen  },
};

} // namespace

std::span<const PROGRAM_KEY> ProgramKeys() {
    return kKeys;
}
