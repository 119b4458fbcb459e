#include "library/game_identity.h"

#include <algorithm>
#include <iterator>

bool IdentifyGame(const CGameFile& game, uint32_t nameIndex, GAME_IDENTITY& identity) {
    const GAME_HEADER& header = game.Header();
    if (header.system == kSystemArcade) {
        identity.system = header.system;
        std::copy(std::begin(header.headerHash), std::end(header.headerHash),
                  identity.hash.begin());
        return true;
    }
    NAME_RECORD variant;
    if (!game.GetRawName(nameIndex, variant)) {
        return false;
    }
    const int index = game.NameRomAt(nameIndex, 0);
    std::string name;
    ROM_RECORD rom{};
    if (index < 0 || !game.GetRom(static_cast<uint32_t>(index), name, rom)) {
        return false;
    }
    identity.system = header.system;
    std::copy(std::begin(rom.sha256), std::end(rom.sha256), identity.hash.begin());
    return true;
}
