#include "sega8/game_image.h"

#include "host/emu_system.h"
#include "library/game_file.h"

#include <cstring>
#include <utility>

namespace {

// The record's bytes as `Record`, or `fallback` when its tag is another one.
template <typename Record>
Record RecordOf(const CGameFile& game, const char* tag, const Record& fallback) {
    MACHINE_RECORD raw{};
    if (!game.SelectedMachineRecord(raw) || std::memcmp(raw.bytes, tag, 4) != 0) {
        return fallback;
    }
    Record record{};
    static_assert(sizeof record <= sizeof raw.bytes);
    std::memcpy(&record, raw.bytes, sizeof record);
    return record;
}

} // namespace

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

SMS_RECORD SmsRecordOf(const CGameFile& game) {
    SMS_RECORD record{};
    record.input1 = 1;
    record.input2 = 1;
    record.board = 1;
    record.consoles = 63;
    return RecordOf(game, "SMS0", record);
}

GAG_RECORD GearRecordOf(const CGameFile& game) {
    GAG_RECORD record{};
    record.board = 1;
    record.unknown22 = 1;
    return RecordOf(game, "GAG0", record);
}

ARC_RECORD ArcadeRecordOf(const CGameFile& game) {
    ARC_RECORD record{};
    record.board = 3; // a joystick with two buttons, nothing enciphered
    return RecordOf(game, "ARC0", record);
}
