// The machine records of games that no database knows.
#pragma once

#include "facts/arcade_facts.h"
#include "facts/sms_facts.h"
#include "formats/game_file.h"

#include <cstring>

// For every console, two joypads, the usual mapper, no FM sound.
[[nodiscard]] inline SMS_RECORD DefaultSmsRecord() {
    SMS_RECORD record{};
    std::memcpy(record.tag, "SMS0", sizeof record.tag);
    record.input1 = OptionByte(PadDevice::kJoypad);
    record.input2 = OptionByte(PadDevice::kJoypad);
    record.board = 1;
    record.consoles = kSmsEveryConsole;
    return record;
}

// The usual mapper. A Game Gear file may hold this record as its tag alone.
[[nodiscard]] inline GAG_RECORD DefaultGearRecord() {
    GAG_RECORD record{};
    std::memcpy(record.tag, "GAG0", sizeof record.tag);
    record.board = 1;
    record.unknown22 = 1;
    return record;
}

// A joystick with two buttons, not encrypted.
[[nodiscard]] inline ARC_RECORD DefaultArcadeRecord() {
    ARC_RECORD record{};
    std::memcpy(record.tag, "ARC0", sizeof record.tag);
    record.board = kBoardJoystick;
    return record;
}

// The record as a game file holds it.
template <typename Record>
[[nodiscard]] MACHINE_RECORD ToMachineRecord(const Record& record) {
    static_assert(sizeof record <= sizeof(MACHINE_RECORD::bytes));
    MACHINE_RECORD machine{};
    std::memcpy(machine.bytes, &record, sizeof record);
    return machine;
}
