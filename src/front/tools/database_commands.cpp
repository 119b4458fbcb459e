// `database make` and `database show`.
#include "base/files.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "front/tools/interruption.h"
#include "front/tools/progress_bar.h"
#include "library/database_file.h"
#include "library/database_maker.h"
#include "library/database_rules.h"
#include "library/logiqx.h"

#include <cinttypes>
#include <cstdio>
#include <utility>

namespace fs = std::filesystem;

namespace {

// "1 game", "2 games".
std::string Count(size_t count, const char* word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

bool ReadText(const fs::path& path, std::string& text) {
    std::vector<uint8_t> bytes;
    std::string error;
    if (!ReadFile(path, bytes, error)) {
        Complain(error);
        return false;
    }
    text.assign(bytes.begin(), bytes.end());
    return true;
}

bool ReadList(const fs::path& path, LOGIQX_FILE& list) {
    std::string text;
    std::string fault;
    if (!ReadText(path, text)) {
        return false;
    }
    if (!ParseLogiqx(text, list, fault)) {
        Complain(path.string() + ": " + fault);
        return false;
    }
    if (list.games.empty()) {
        Complain(path.string() + ": lists no games");
        return false;
    }
    return true;
}

bool ReadRules(const fs::path& path, uint16_t system, std::vector<DATABASE_RULE>& rules) {
    std::string text;
    std::string fault;
    if (path.empty()) {
        return true;
    }
    if (!ReadText(path, text)) {
        return false;
    }
    if (!ParseDatabaseRules(text, system, rules, fault)) {
        Complain(path.string() + ": " + fault);
        return false;
    }
    return true;
}

void PrintLeftOut(size_t count, const char* why) {
    if (count != 0) {
        std::printf("left out: %s %s\n", Count(count, "game").c_str(), why);
    }
}

void PrintContents(const fs::path& file, std::span<const CGameFile> entries) {
    size_t images = 0;
    size_t names = 0;
    for (const CGameFile& entry : entries) {
        images += entry.RomCount();
        names += entry.NameCount();
    }
    std::printf("%s: %s, %s, %s\n", Printable(file.string()).c_str(),
                Count(entries.size(), "game").c_str(), Count(images, "image").c_str(),
                Count(names, "name").c_str());
}

void PrintReport(const DATABASE_REPORT& report, bool withRoms) {
    PrintLeftOut(report.unknownImage,
                 withRoms ? "without a known image: not in the folder of images"
                          : "without a known SHA-256; --roms computes it from your images");
    PrintLeftOut(report.notDumped, "that nobody has an image of");
    PrintLeftOut(report.severalImages, "of several images");
    PrintLeftOut(report.tooLarge, "of more pieces or bytes than an entry can have");
    for (const std::string& pattern : report.deadRules) {
        std::printf("no game is named as the rule says: %s\n", Printable(pattern).c_str());
    }
}

void ShowName(const CGameFile& entry, uint32_t index) {
    NAME_VIEW name;
    if (!entry.GetName(index, name)) {
        return;
    }
    std::printf("  name: %s\n", Printable(name.title).c_str());
    if (!name.altTitle.empty()) {
        std::printf("    second title: %s\n", Printable(name.altTitle).c_str());
    }
    if (!name.regions.empty()) {
        std::printf("    regions: %s\n", Printable(name.regions).c_str());
    }
    if (name.raw.year != 0) {
        std::printf("    year: %d\n", 1900 + name.raw.year);
    }
    std::printf("    play: %s\n    key: %s\n    pieces:", PlayWords(name.raw.playTypes).c_str(),
                Printable(name.contentKey).c_str());
    for (uint32_t slot = 0; entry.NameRomAt(index, slot) >= 0; ++slot) {
        std::printf(" %d", entry.NameRomAt(index, slot));
    }
    std::printf("\n");
    const uint8_t* record = nullptr;
    uint32_t length = 0;
    if (entry.GetMachineRecord(index, record, length)) {
        const std::string words = RecordWords(entry.Header().system, record);
        std::printf("%s%s%s", words.empty() ? "" : "    machine: ", words.c_str(),
                    words.empty() ? "" : "\n");
    }
}

void ShowEntry(const CGameFile& entry) {
    std::printf("game: %s\n", Printable(entry.GadaText()).c_str());
    for (uint32_t i = 0; i < entry.NameCount(); ++i) {
        ShowName(entry, i);
    }
    for (uint32_t i = 0; i < entry.RomCount(); ++i) {
        std::string name;
        ROM_RECORD rom{};
        if (entry.GetRom(i, name, rom)) {
            std::printf("  piece %" PRIu32 ": %s, %" PRIu32 " bytes\n    sha256: %s\n", i,
                        Printable(name).c_str(), rom.size, HexText(rom.sha256).c_str());
        }
    }
}

} // namespace

namespace {

// With progress, as the images are read. False after Ctrl-C: what was not looked for would be missing.
bool SearchAndMake(DATABASE_SOURCES sources, std::vector<CGameFile>& entries,
                   DATABASE_REPORT& report) {
    const Interruption interruption;
    ProgressBar bar;
    sources.search.complain = [&](const std::string& line) { bar.Complain(line); };
    sources.search.progress = [&](size_t done, size_t total, const std::string& name) {
        bar.Show(done, total, name);
    };
    sources.search.stop = &interruption.Flag();
    entries = MakeDatabase(sources, report);
    return !interruption.Requested();
}

} // namespace

int DatabaseMakeCommand(const DATABASE_MAKE_OPTIONS& options) {
    const MACHINE_FACTS* const facts = FindMachineFacts(std::string_view(options.machine));
    LOGIQX_FILE list;
    std::vector<DATABASE_RULE> rules;
    if (facts == nullptr || !ReadList(options.listFile, list) ||
        !ReadRules(options.rulesFile, facts->system, rules)) {
        return kExitFailed;
    }
    std::error_code code;
    if (!options.roms.empty() && !fs::is_directory(options.roms, code)) {
        Complain(options.roms.string() + ": is not a folder");
        return kExitFailed;
    }
    DATABASE_REPORT report;
    std::vector<CGameFile> entries;
    DATABASE_SOURCES sources;
    sources.system = facts->system;
    sources.list = &list;
    sources.rules = rules;
    sources.roms = options.roms;
    if (!SearchAndMake(std::move(sources), entries, report)) {
        return kExitInterrupted;
    }
    std::string error;
    if (entries.empty()) {
        error = options.outFile.string() + ": not written, as no game of the list can be known";
    } else if (WriteFile(options.outFile, WriteDatabase(entries), error)) {
        PrintContents(options.outFile, entries);
    }
    PrintReport(report, !options.roms.empty());
    if (!error.empty()) {
        Complain(error);
        return kExitFailed;
    }
    return kExitDone;
}

int DatabaseShowCommand(const fs::path& file) {
    std::vector<uint8_t> bytes;
    std::vector<CGameFile> entries;
    std::string error;
    if (!ReadFile(file, bytes, error)) {
        Complain(error);
        return kExitFailed;
    }
    if (!ReadDatabaseStrictly(bytes, entries, error)) {
        Complain(file.string() + ": " + error);
        return kExitFailed;
    }
    const MACHINE_FACTS* const facts =
        entries.empty() ? nullptr : FindMachineFacts(entries.front().Header().system);
    std::printf("%s: %s%s\n", Printable(file.string()).c_str(),
                Count(entries.size(), "game").c_str(),
                facts != nullptr ? (std::string(" of the ") + facts->name).c_str() : "");
    for (const CGameFile& entry : entries) {
        ShowEntry(entry);
    }
    return kExitDone;
}
