#include "library/game_rows.h"

#include "base/text.h"
#include "library/game_database.h"

#include <algorithm>
#include <utility>

namespace {

constexpr uint8_t kStatusBits = 0x7F;
constexpr uint32_t kKnownClasses = 4;
constexpr int32_t kFirstYear = 1900;

constexpr std::pair<wchar_t, int32_t> kFlags[] = {
    {L'E', 9 },
    {L'U', 10},
    {L'B', 11},
    {L'J', 12},
    {L'K', 13},
};

bool IsKnown(const GAME_IDENTITY& identity, const CGameDatabase& database) {
    if (identity.system == kSystemArcade) {
        return database.FindKnownHeader(identity.hash);
    }
    return identity.system != 0 && database.FindKnownRom(identity.hash);
}

} // namespace

std::array<int32_t, kRowFlags> FlagImages(std::wstring_view regions) {
    std::array<int32_t, kRowFlags> images;
    images.fill(kNoFlagImage);
    size_t count = 0;
    for (const wchar_t letter : regions) {
        const auto* const flag =
            std::ranges::find_if(kFlags, [=](const auto& row) { return row.first == letter; });
        if (flag != std::end(kFlags) && count < images.size()) {
            images[count++] = flag->second;
        }
    }
    return images;
}

uint32_t StatusColour(uint8_t status, bool known) {
    uint32_t colour = 0;
    switch (status & kStatusBits) {
    case 1: colour = 1; break;
    case 2:
    case 3: colour = 2; break;
    case 4: colour = 4; break;
    case 5: colour = 3; break;
    default: return 0;
    }
    return known ? colour + kKnownClasses : colour;
}

bool MakeRow(const std::filesystem::path& path, const CGameFile& game, uint32_t nameIndex,
             const CGameDatabase& database, GameListRow& row) {
    NAME_VIEW name;
    if (!game.GetName(nameIndex, name)) {
        return false;
    }
    row.nameIndex = nameIndex;
    row.regions = WideFromUtf8(name.regions);
    row.flagImages = FlagImages(row.regions);
    row.identity = {};
    static_cast<void>(IdentifyGame(game, nameIndex, row.identity));
    row.known = IsKnown(row.identity, database);
    row.title = WideFromUtf8(name.title);
    row.path = path;
    row.contentKey = WideFromUtf8(name.contentKey);
    row.contentKey2 = WideFromUtf8(name.contentKey2);
    row.statusColour = StatusColour(name.raw.status, row.known);
    row.year = kFirstYear + name.raw.year;
    row.playTypes = name.raw.playTypes;
    return true;
}
