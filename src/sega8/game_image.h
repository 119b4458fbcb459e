// The machine records of the 8-bit machines, in a game file.
#pragma once

class CGameFile;
struct SMS_RECORD;
struct GAG_RECORD;
struct ARC_RECORD;

// The machine record of the selected variant; default values if the file has none of this kind.
[[nodiscard]] SMS_RECORD SmsRecordOf(const CGameFile& game);
[[nodiscard]] GAG_RECORD GearRecordOf(const CGameFile& game);
[[nodiscard]] ARC_RECORD ArcadeRecordOf(const CGameFile& game);
