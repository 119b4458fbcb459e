#include "sega8/game_image.h"

#include "formats/default_records.h"

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
    return RecordOf(game, "SMS0", DefaultSmsRecord());
}

GAG_RECORD GearRecordOf(const CGameFile& game) {
    GAG_RECORD record{};
    record.board = 1;
    record.unknown22 = 1;
    return RecordOf(game, "GAG0", record);
}

ARC_RECORD ArcadeRecordOf(const CGameFile& game) {
    return RecordOf(game, "ARC0", DefaultArcadeRecord());
}
