// Changes to records, made on database entries.
#include "formats/game_file.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr uint8_t kNoRom = 255;

// A text that fills the field has no NUL; a shorter one is padded with NULs.
template <size_t Width>
void SetField(char (&field)[Width], const char* text) {
    if (text == nullptr) {
        return;
    }
    const size_t length = strnlen(text, Width);
    std::memset(field, 0, Width);
    std::memcpy(field, text, length);
}

} // namespace

void CGameFile::SetNameText(uint32_t index, const NAME_TEXTS& texts) {
    if (index >= names.size()) {
        return;
    }
    NAME_RECORD& name = names[index];
    SetField(name.title, texts.title);
    SetField(name.altTitle, texts.altTitle);
    SetField(name.contentKey, texts.contentKey);
    SetField(name.contentKey2, texts.contentKey2);
    SetField(name.regions, texts.regions);
}

void CGameFile::SetNameBytes(uint32_t index, const NAME_RECORD& pattern,
                             const MACHINE_RECORD& machineRecord) {
    if (index >= names.size()) {
        return;
    }
    NAME_RECORD& name = names[index];
    name.reserved4 = pattern.reserved4;
    name.playTypes = pattern.playTypes;
    name.year = pattern.year;
    name.status = pattern.status;
    if (index < machineRecords.size()) {
        machineRecords[index] = FittedMachineRecord(machineRecord);
    }
}

void CGameFile::RenameRom(uint32_t index, std::string_view name) {
    if (index >= roms.size()) {
        return;
    }
    auto& field = roms[index].name;
    const std::string_view cut = name.substr(0, std::min(name.find('\0'), sizeof field - 1));
    std::memset(field, 0, sizeof field);
    std::copy(cut.begin(), cut.end(), field);
}

void CGameFile::UnlinkRom(uint32_t nameIndex, uint32_t romIndex, bool renumber) {
    if (nameIndex >= names.size() || romIndex >= roms.size() || romIndex >= kNoRom) {
        return;
    }
    auto& list = names[nameIndex].romList;
    auto* end = std::remove(std::begin(list), std::end(list), static_cast<uint8_t>(romIndex));
    std::fill(end, std::end(list), kNoRom);
    if (!renumber) {
        return;
    }
    for (uint8_t& entry : list) {
        if (entry > romIndex && entry != kNoRom) {
            --entry;
        }
    }
}

void CGameFile::RemoveRom(uint32_t index) {
    if (index >= roms.size()) {
        return;
    }
    for (uint32_t name = 0; name < NameCount(); ++name) {
        UnlinkRom(name, index, true);
    }
    header.rawSize -= roms[index].size;
    roms.erase(roms.begin() + index);
}

void CGameFile::RemoveName(uint32_t index) {
    if (index >= names.size()) {
        return;
    }
    names.erase(names.begin() + index);
    if (index < machineRecords.size()) {
        machineRecords.erase(machineRecords.begin() + index);
    }
}
