#include "front/demo_database.h"

#include "facts/machine_facts.h"
#include "formats/default_records.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

template <size_t Size>
void PutText(char (&field)[Size], std::string_view text) {
    std::copy_n(text.begin(), std::min(text.size(), Size - 1), field);
}

CGameFile EntryOf(const DEMO& demo) {
    NAME_RECORD name{};
    std::memcpy(name.tag, "NAME", sizeof name.tag);
    name.playTypes = demo.playTypes;
    name.year = kDemoYear - 1900;
    PutText(name.title, demo.title);
    PutText(name.regions, demo.regions);
    PutText(name.contentKey, demo.name);
    CGameFile entry;
    entry.Create(true, demo.system);
    entry.SetGadaText(demo.title);
    entry.AddNameCopy(name, DemoMachineRecord(demo.system));
    entry.AddRom("v1.0", Sha256(demo.image), static_cast<uint32_t>(demo.image.size()));
    static_cast<void>(entry.LinkRom(0, 0));
    entry.ComputeHeaderHash();
    return entry;
}

} // namespace

MACHINE_RECORD DemoMachineRecord(uint16_t system) {
    switch (system) {
    case kSystemArcade: return ToMachineRecord(DefaultArcadeRecord());
    case kSystemMasterSystem: {
        SMS_RECORD record = DefaultSmsRecord();
        record.features = kSmsFeatureFm; // our games play on the FM chip too
        return ToMachineRecord(record);
    }
    case kSystemGameGear: return ToMachineRecord(DefaultGearRecord());
    default: return {};
    }
}

std::vector<CGameFile> DemoDatabase(uint16_t system) {
    std::vector<CGameFile> entries;
    for (const DEMO& demo : Demos()) {
        if (demo.system == system) {
            entries.push_back(EntryOf(demo));
        }
    }
    return entries;
}
