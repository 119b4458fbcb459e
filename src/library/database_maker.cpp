#include "library/database_maker.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/sms_facts.h"
#include "formats/default_records.h"
#include "formats/packing.h"
#include "library/convert.h"
#include "library/release_name.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <numeric>

namespace {

constexpr size_t kMostPieces = 254;                          // an index is a byte, and 255 none
constexpr size_t kMostListed = sizeof(NAME_RECORD::romList); // pieces that a name can list
constexpr uint8_t kKindBios = 3;                             // of a Master System record
constexpr uint8_t kSinglePlayer = 1;                         // as for games that are not known
constexpr const char* kFirstVersion = "v1.0";                // as for games that are not known
constexpr std::string_view kOpcodes = "opcodes";

// Leaves room for the field's NUL.
template <size_t Size>
void PutText(char (&field)[Size], std::string_view text) {
    const std::string_view cut = CutUtf8(text, Size - 1);
    std::memset(field, 0, Size);
    std::copy(cut.begin(), cut.end(), field);
}

// The consoles on which the releases of these regions ran.
uint8_t SmsConsolesOf(std::string_view regions) {
    uint8_t consoles = 0;
    for (const char region : regions) {
        if (region == 'E') {
            consoles |= kSms1Pal | kSms2Pal;
        } else if (region == 'U' || region == 'B') {
            consoles |= kSms1Ntsc | kSms2Ntsc; // Brazil's television has 60 fields a second too
        } else {
            consoles |= kSmsJapanese | kMarkIii;
        }
    }
    return consoles != 0 ? consoles : kSmsEveryConsole;
}

MACHINE_RECORD RecordOf(uint16_t system, std::string_view regions, bool bios) {
    switch (system) {
    case kSystemMasterSystem: {
        SMS_RECORD record = DefaultSmsRecord();
        record.consoles = SmsConsolesOf(regions);
        record.kind = bios ? kKindBios : 0;
        return ToMachineRecord(record);
    }
    case kSystemGameGear: return ToMachineRecord(DefaultGearRecord());
    case kSystemArcade: return ToMachineRecord(DefaultArcadeRecord());
    default: return {};
    }
}

// A title that a name lists.
struct TITLE {
    std::string title;
    std::string regions;
};

// One game of the list, with what its name and its releases say.
struct LISTED_GAME {
    const LOGIQX_GAME* game = nullptr;
    RELEASE_NAME name;
    std::vector<TITLE> otherTitles;  // of releases
    std::vector<KNOWN_IMAGE> images; // empty: left out
};

class Maker {
public:
    Maker(const DATABASE_SOURCES& given, DATABASE_REPORT& counts)
        : sources(given)
        , report(counts)
        , arcade(given.system == kSystemArcade) {}
    std::vector<CGameFile> Make();

private:
    void ReadNames();
    void FindAllImages();
    std::vector<const LOGIQX_ROM*> RomsOf(const LOGIQX_GAME& game);
    std::vector<std::vector<size_t>> Groups() const;
    CGameFile MakeConsoleEntry(std::span<const size_t> group);
    CGameFile MakeArcadeEntry(const LISTED_GAME& listed);
    void AddName(CGameFile& entry, const LISTED_GAME& listed, const TITLE& title,
                 const std::string& key, std::span<const uint32_t> pieces);
    void NoteDeadRules();

    const DATABASE_SOURCES& sources;
    DATABASE_REPORT& report;
    bool arcade;
    std::vector<LISTED_GAME> games;
};

// Titles of the releases besides that of the game itself.
std::vector<TITLE> OtherTitles(const LOGIQX_GAME& game, RELEASE_NAME& name) {
    std::vector<TITLE> titles;
    std::string regions;
    for (const LOGIQX_RELEASE& release : game.releases) {
        const RELEASE_NAME parsed = ParseReleaseName(release.name);
        const std::string letters =
            JoinRegions(parsed.regions, parsed.regions.empty() ? RegionLetters(release.region)
                                                               : std::string_view{});
        if (parsed.title.empty() || parsed.title == name.title) {
            regions = JoinRegions(regions, letters);
            continue;
        }
        const auto known = std::ranges::find(titles, parsed.title, &TITLE::title);
        if (known == titles.end()) {
            titles.push_back({parsed.title, letters});
        } else {
            known->regions = JoinRegions(known->regions, letters);
        }
    }
    if (name.regions.empty()) {
        name.regions = regions;
    }
    return titles;
}

void Maker::ReadNames() {
    for (const LOGIQX_GAME& game : sources.list->games) {
        LISTED_GAME listed;
        listed.game = &game;
        // The name of an arcade set is that of its file.
        const std::string& full =
            arcade && !game.description.empty() ? game.description : game.name;
        listed.name = ParseReleaseName(full);
        listed.name.bios = listed.name.bios || game.bios;
        if (listed.name.title.empty()) {
            listed.name.title = full;
        }
        listed.otherTitles = OtherTitles(game, listed.name);
        games.push_back(std::move(listed));
    }
}

// The pieces that the game is made of; empty, and counted, if it cannot be an entry.
std::vector<const LOGIQX_ROM*> Maker::RomsOf(const LOGIQX_GAME& game) {
    std::vector<const LOGIQX_ROM*> roms;
    for (const LOGIQX_ROM& rom : game.roms) {
        // Lists have saves and notes beside a console's image.
        if (arcade || game.roms.size() == 1 || ValidExtension(sources.system, rom.name)) {
            roms.push_back(&rom);
        }
    }
    if (!arcade && roms.size() > 1) {
        ++report.severalImages;
        return {};
    }
    if (roms.empty()) {
        ++report.unknownImage;
        return {};
    }
    if (std::ranges::any_of(roms, [](const LOGIQX_ROM* rom) { return rom->noDump; })) {
        ++report.notDumped;
        return {};
    }
    uint64_t size = 0;
    for (const LOGIQX_ROM* const rom : roms) {
        size += std::min(rom->size, kImageLimit + 1);
    }
    if (roms.size() > kMostListed || size > kImageLimit) {
        ++report.tooLarge;
        return {};
    }
    return roms;
}

void Maker::FindAllImages() {
    std::vector<std::vector<const LOGIQX_ROM*>> romsOf;
    std::vector<const LOGIQX_ROM*> wanted;
    for (const LISTED_GAME& listed : games) {
        for (const LOGIQX_ROM* const rom : romsOf.emplace_back(RomsOf(*listed.game))) {
            if (!ImageOfList(sources.system, *rom) && rom->size > 0) {
                wanted.push_back(rom);
            }
        }
    }
    std::map<const LOGIQX_ROM*, KNOWN_IMAGE> found;
    if (!sources.roms.empty() && !wanted.empty()) {
        const auto images = FindImages(sources.system, wanted, sources.roms, sources.search);
        for (size_t i = 0; i < wanted.size(); ++i) {
            if (images[i]) {
                found.emplace(wanted[i], *images[i]);
            }
        }
    }
    for (size_t i = 0; i < games.size(); ++i) {
        for (const LOGIQX_ROM* const rom : romsOf[i]) {
            if (const auto image = ImageOfList(sources.system, *rom)) {
                games[i].images.push_back(*image);
            } else if (const auto at = found.find(rom); at != found.end()) {
                games[i].images.push_back(at->second);
            }
        }
        if (games[i].images.size() != romsOf[i].size()) {
            games[i].images.clear();
            ++report.unknownImage;
        }
    }
}

// Sets of games, joined two at a time.
class Joined {
public:
    explicit Joined(size_t count)
        : leader(count) {
        std::iota(leader.begin(), leader.end(), 0);
    }

    [[nodiscard]] size_t LeaderOf(size_t index) {
        while (leader[index] != index) {
            leader[index] = leader[leader[index]]; // shorter for the next one
            index = leader[index];
        }
        return index;
    }
    void Join(size_t left, size_t right) {
        const size_t a = LeaderOf(left);
        const size_t b = LeaderOf(right);
        leader[std::max(a, b)] = std::min(a, b);
    }

private:
    std::vector<size_t> leader; // the first of its set leads to itself
};

// Joins the games for which `key` returns the same; an empty key joins nothing.
template <typename Key>
void JoinEqual(Joined& joined, size_t count, Key key) {
    std::map<decltype(key(size_t{0})), size_t> first;
    for (size_t i = 0; i < count; ++i) {
        const auto value = key(i);
        if (value.empty()) {
            continue;
        }
        const auto [at, added] = first.emplace(value, i);
        if (!added) {
            joined.Join(at->second, i);
        }
    }
}

// Clones and their parents. Those of a parent that the list lacks belong together too.
void JoinClones(Joined& joined, std::span<const LISTED_GAME> games) {
    JoinEqual(joined, games.size(), [&](size_t i) {
        const LOGIQX_GAME& game = *games[i].game;
        return game.cloneOf.empty() ? game.name : game.cloneOf;
    });
    // A clone may be a parent itself.
    std::map<std::string, size_t> byName;
    for (size_t i = 0; i < games.size(); ++i) {
        byName.emplace(games[i].game->name, i);
    }
    for (size_t i = 0; i < games.size(); ++i) {
        if (const auto parent = byName.find(games[i].game->cloneOf); parent != byName.end()) {
            joined.Join(i, parent->second);
        }
    }
}

// The groups in the order of the list, each with its parent first.
std::vector<std::vector<size_t>> Maker::Groups() const {
    Joined joined(games.size());
    if (std::ranges::any_of(
            games, [](const LISTED_GAME& listed) { return !listed.game->cloneOf.empty(); })) {
        JoinClones(joined, games);
    } else {
        JoinEqual(joined, games.size(),
                  [&](size_t i) { return LowerAscii(std::string_view(games[i].name.title)); });
    }
    JoinEqual(joined, games.size(), [&](size_t i) {
        const auto& images = games[i].images;
        return images.empty() ? std::string() : HexText(images.front().sha256);
    });
    std::map<size_t, std::vector<size_t>> groups;
    for (size_t i = 0; i < games.size(); ++i) {
        groups[joined.LeaderOf(i)].push_back(i);
    }
    std::vector<std::vector<size_t>> list;
    for (auto& [leader, group] : groups) {
        std::stable_partition(group.begin(), group.end(),
                              [&](size_t i) { return games[i].game->cloneOf.empty(); });
        list.push_back(std::move(group));
    }
    return list;
}

void Maker::AddName(CGameFile& entry, const LISTED_GAME& listed, const TITLE& title,
                    const std::string& key, std::span<const uint32_t> pieces) {
    NAME_RECORD name{};
    std::memcpy(name.tag, "NAME", sizeof name.tag);
    name.playTypes = kSinglePlayer;
    name.year = static_cast<uint8_t>(listed.game->year != 0 ? listed.game->year - 1900 : 0);
    PutText(name.title, title.title);
    PutText(name.altTitle, listed.game->name);
    PutText(name.regions, title.regions);
    PutText(name.contentKey, key);
    MACHINE_RECORD record = RecordOf(sources.system, title.regions, listed.name.bios);
    for (const DATABASE_RULE& rule : sources.rules) {
        if (MatchesPattern(rule.pattern, listed.game->name)) {
            ApplyRule(rule, sources.system, name, record);
        }
    }
    entry.AddNameCopy(name, record);
    for (const uint32_t piece : pieces) {
        static_cast<void>(entry.LinkRom(entry.NameCount() - 1, piece));
    }
}

// The text cut to what a field of this size holds, as a name of a file.
std::string FileKey(std::string_view title, size_t fieldBytes) {
    return FileNameFromTitle(CutUtf8(title, fieldBytes - 1));
}

// An entry as it grows. A name has the index of the piece that it plays, so names for more titles wait to the end.
class ConsoleEntry {
public:
    struct PLAYED {
        const LISTED_GAME* listed;
        TITLE title;
        uint32_t piece;
    };

    ConsoleEntry(uint16_t system, std::string_view fileName) {
        entry.Create(true, system);
        entry.SetGadaText(fileName);
    }

    // False if the entry has no room for the image.
    bool Add(const LISTED_GAME& listed);
    [[nodiscard]] std::vector<PLAYED> Names() const;
    CGameFile Take() { return std::move(entry); }

private:
    bool AddPiece(const LISTED_GAME& listed, const TITLE& title);

    CGameFile entry;
    std::vector<PLAYED> own;   // of the piece of the same index
    std::vector<PLAYED> later; // for more titles
};

bool ConsoleEntry::AddPiece(const LISTED_GAME& listed, const TITLE& title) {
    const KNOWN_IMAGE& image = listed.images.front();
    const uint32_t piece = entry.RomCount();
    if (piece == kMostPieces || uint64_t{entry.Header().rawSize} + image.size > kImageLimit) {
        return false;
    }
    const std::string& revision = listed.name.revision;
    entry.AddRom(revision.empty() ? kFirstVersion : CutUtf8(revision, sizeof(ROM_RECORD::name) - 1),
                 image.sha256, image.size);
    own.push_back({&listed, title, piece});
    return true;
}

bool ConsoleEntry::Add(const LISTED_GAME& listed) {
    const TITLE title = {listed.name.title, listed.name.regions};
    const int found = entry.FindRom(listed.images.front().sha256);
    const uint32_t piece = found < 0 ? entry.RomCount() : static_cast<uint32_t>(found);
    if (found < 0) {
        if (!AddPiece(listed, title)) {
            return false;
        }
    } else if (TITLE& known = own[piece].title; known.title == title.title) {
        known.regions = JoinRegions(known.regions, title.regions);
    } else {
        later.push_back({&listed, title, piece});
    }
    for (const TITLE& other : listed.otherTitles) {
        later.push_back({&listed, other, piece});
    }
    return true;
}

std::vector<ConsoleEntry::PLAYED> ConsoleEntry::Names() const {
    std::vector<PLAYED> names = own;
    names.insert(names.end(), later.begin(), later.end());
    return names;
}

CGameFile Maker::MakeConsoleEntry(std::span<const size_t> group) {
    const std::string& title = games[group.front()].name.title;
    const std::string key = FileKey(title, sizeof(NAME_RECORD::contentKey));
    ConsoleEntry entry(sources.system, FileKey(title, sizeof(GADA_RECORD::text)));
    for (const size_t index : group) {
        if (!games[index].images.empty() && !entry.Add(games[index])) {
            ++report.tooLarge;
        }
    }
    CGameFile made = entry.Take();
    for (const ConsoleEntry::PLAYED& name : entry.Names()) {
        AddName(made, *name.listed, name.title, key, std::span(&name.piece, 1));
    }
    return made;
}

CGameFile Maker::MakeArcadeEntry(const LISTED_GAME& listed) {
    CGameFile entry;
    entry.Create(true, sources.system);
    entry.SetGadaText(FileKey(listed.game->name, sizeof(GADA_RECORD::text)));
    std::vector<uint32_t> pieces;
    for (size_t i = 0; i < listed.images.size(); ++i) {
        const LOGIQX_ROM& rom = listed.game->roms[i];
        entry.AddRom(CutUtf8(rom.name, sizeof(ROM_RECORD::name) - 1), listed.images[i].sha256,
                     listed.images[i].size);
        if (rom.name != kOpcodes) {
            pieces.push_back(static_cast<uint32_t>(i));
        }
    }
    const std::string key = FileKey(listed.game->name, sizeof(NAME_RECORD::contentKey));
    AddName(entry, listed, {listed.name.title, listed.name.regions}, key, pieces);
    for (const TITLE& other : listed.otherTitles) {
        AddName(entry, listed, other, key, pieces);
    }
    return entry;
}

void Maker::NoteDeadRules() {
    for (const DATABASE_RULE& rule : sources.rules) {
        if (std::ranges::none_of(games, [&](const LISTED_GAME& listed) {
                return MatchesPattern(rule.pattern, listed.game->name);
            })) {
            report.deadRules.push_back(rule.pattern);
        }
    }
}

std::vector<CGameFile> Maker::Make() {
    ReadNames();
    FindAllImages();
    NoteDeadRules();
    std::vector<CGameFile> entries;
    if (arcade) {
        for (const LISTED_GAME& listed : games) {
            if (!listed.images.empty()) {
                entries.push_back(MakeArcadeEntry(listed));
            }
        }
    } else {
        for (const std::vector<size_t>& group : Groups()) {
            entries.push_back(MakeConsoleEntry(group));
        }
        std::erase_if(entries, [](const CGameFile& entry) { return entry.RomCount() == 0; });
    }
    for (CGameFile& entry : entries) {
        entry.ComputeHeaderHash();
    }
    return entries;
}

} // namespace

std::vector<CGameFile> MakeDatabase(const DATABASE_SOURCES& sources, DATABASE_REPORT& report) {
    report = {};
    return Maker(sources, report).Make();
}
