// Containers and databases of any bytes: read, queried, edited and written again.
#include "formats/game_file.h"
#include "formats/packing.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void Require(bool fact) {
    if (!fact) {
        std::abort();
    }
}

void ReadEverything(CGameFile& game) {
    NAME_VIEW name;
    std::string text;
    ROM_RECORD rom{};
    MACHINE_RECORD machine{};
    const uint8_t* record = nullptr;
    uint32_t length = 0;
    for (uint32_t i = 0; i <= std::max(game.NameCount(), game.RomCount()); ++i) {
        game.selectedName = static_cast<int32_t>(i);
        Require(game.GetName(i, name) == (i < game.NameCount()));
        Require(game.GetRom(i, text, rom) == (i < game.RomCount()));
        Require(game.GetMachineRecord(i, record, length) == (i < game.MachineRecordCount()));
        Require(game.SelectedMachineRecord(machine) == (i < game.MachineRecordCount()));
        Require((game.SelectedRomHash() != nullptr) == (i < game.RomCount()));
        Require(game.NamesUsingRom(i).back() == -1);
        Require(game.NameRomAt(i, i) < 255);
        (void)game.RomOffset(i);
    }
    // One image for each game: lists that repeat a large piece would take all the time.
    game.selectedName = 0;
    if (const auto image = game.AssembleSelectedImage()) {
        Require(image->size() <= kImageLimit);
    }
}

void Edit(CGameFile& game, uint32_t index) {
    NAME_RECORD name{};
    MACHINE_RECORD machine{};
    NAME_TEXTS texts;
    texts.title = "title";
    game.SetNameText(index, texts);
    (void)game.GetRawName(index, name);
    game.SetNameBytes(index, name, machine);
    game.AddNameCopy(name, machine);
    (void)game.LinkRom(game.NameCount() - 1, index);
    game.UnlinkRom(index, index, (index & 1) != 0);
    game.RenameRom(index, "renamed");
    game.RemoveRom(index);
    game.RemoveName(index);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CGameFile game;
    if (game.Parse(data, size, true)) {
        Require(game.Data().size() <= LargestUnpackedSize(size));
        ReadEverything(game);
    }
    if (game.Parse(data, size, false)) {
        ReadEverything(game);
        const std::vector<uint8_t> written = game.Serialise(true);
        CGameFile second;
        Require(second.Parse(written.data(), written.size(), false));
        Require(second.Serialise(true) == written);
        for (uint32_t i = 0; i < 3 && i < size; ++i) {
            Edit(game, data[i] % 8u);
        }
        ReadEverything(game);
    }
    Require(ParseDatabase(data, size).size() <= size / sizeof(GAME_HEADER));
    return 0;
}
