#include "machine/machine_image.h"

#include "formats/game_file.h"
#include "machine/emu_system.h"

std::string GameTitle(const CGameFile& game) {
    NAME_VIEW name;
    if (game.selectedName < 0 || !game.GetName(static_cast<uint32_t>(game.selectedName), name)) {
        return "the game";
    }
    return '"' + name.title + '"';
}

std::optional<std::vector<uint8_t>> TakeImage(const CGameFile* game, uint32_t largest) {
    if (game == nullptr) {
        EmuSetLastError("there is no game to run");
        return std::nullopt;
    }
    auto image = game->AssembleSelectedImage();
    if (!image) {
        EmuSetLastError(GameTitle(*game) + " has no image");
        return std::nullopt;
    }
    if (image->empty()) {
        EmuSetLastError("the image of " + GameTitle(*game) + " is empty");
        return std::nullopt;
    }
    if (image->size() > largest) {
        EmuSetLastError("the image of " + GameTitle(*game) + " has " +
                        std::to_string(image->size()) + " bytes; this machine takes at most " +
                        std::to_string(largest));
        return std::nullopt;
    }
    return image;
}
