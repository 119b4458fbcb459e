#include "library/systems.h"

namespace {

constexpr std::string_view kSmsExtensions[] = {".sms", ".sg"}; // .sg: the console before it
constexpr std::string_view kGameGearExtensions[] = {".gg"};
constexpr std::string_view kNesExtensions[] = {".nes"};
constexpr std::string_view kMegaDriveExtensions[] = {".bin", ".smd", ".gen", ".md"};

// An arcade set has no extension of its own: it is assembled from whatever files its database names.
constexpr GAME_SYSTEM kSystems[] = {
    {1, "Master System", "sms",    "sms",       ".\\dat\\sms.dat",       kSmsExtensions      },
    {2, "Game Gear",     "gg",     "gamegear",  ".\\dat\\gamegear.dat",  kGameGearExtensions },
    {5, "NES",           "nes",    "nes",       ".\\dat\\nes.dat",       kNesExtensions      },
    {6, "System E",      "arcade", "arcade",    ".\\dat\\arcade.dat",    {}                  },
    {4, "Mega Drive",    "md",     "megadrive", ".\\dat\\megadrive.dat", kMegaDriveExtensions},
};

} // namespace

std::span<const GAME_SYSTEM> GameSystems() {
    return kSystems;
}

const GAME_SYSTEM* FindGameSystem(uint16_t system) {
    for (const GAME_SYSTEM& entry : kSystems) {
        if (entry.system == system) {
            return &entry;
        }
    }
    return nullptr;
}

const GAME_SYSTEM* FindGameSystem(std::string_view shortName) {
    for (const GAME_SYSTEM& entry : kSystems) {
        if (entry.shortName == shortName) {
            return &entry;
        }
    }
    return nullptr;
}
