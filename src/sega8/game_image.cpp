#include "sega8/game_image.h"

#include "formats/game_file.h"

#include <cstring>

namespace {

// The record's bytes as `Record`; `fallback` if it has another tag.
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
    record.board = 3; // a joystick with two buttons, not encrypted
    return RecordOf(game, "ARC0", record);
}
