// `ombrelune list`: the rows of the library, as text or as JSON.

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "library/folder_list.h"
#include "library/game_database.h"
#include "library/game_rows.h"
#include "library/game_source.h"
#include "library/library_index.h"
#include "library/row_filter.h"

#include <nlohmann/json.hpp>

#include <cstdio>

namespace fs = std::filesystem;

namespace {

using Json = nlohmann::ordered_json;

// The rows of a system's folder in the order of its file names; a folder that is not there has none. False if a
// game cannot be read.
bool ReadRows(const MACHINE_FACTS& machine, LibraryIndex& index, std::vector<GameListRow>& rows) {
    const fs::path folder = HomeFolder() / machine.folder;
    std::error_code code;
    if (!fs::exists(folder, code)) {
        return true;
    }
    std::vector<fs::path> names;
    std::string error;
    bool whole = ListFolder(folder, names, error);
    if (!whole) {
        Complain(error);
    }
    const CGameDatabase database(LoadDatabase(machine.system));
    index.LoadFolder(folder);
    for (const fs::path& name : names) {
        CGameFile game;
        if (KindOfFile(machine.system, name) != FolderFile::kGame) {
            continue;
        }
        // The second one says why.
        if (!index.LoadGame(folder / name, game) &&
            !OpenGameFile(folder / name, true, game, error)) {
            Complain(error);
            whole = false;
            continue;
        }
        GameListRow row;
        const bool listed = game.Header().system == machine.system;
        for (uint32_t i = 0; listed && MakeRow(folder / name, game, i, database, row); ++i) {
            rows.push_back(row);
        }
    }
    index.Commit();
    return whole;
}

void PrintText(const MACHINE_FACTS& machine, const ROW_LINE& line) {
    const GameListRow& row = *line.row;
    const std::string columns[] = {
        machine.shortName,         Utf8FromWide(row.title),         Utf8FromWide(line.year.data()),
        Utf8FromWide(row.regions), row.known ? "known" : "unknown", row.path.string()};
    std::string text;
    for (const std::string& column : columns) {
        text += (text.empty() ? "" : "\t") + Printable(column);
    }
    std::printf("%s\n", text.c_str());
}

Json JsonOf(const MACHINE_FACTS& machine, const GameListRow& row) {
    constexpr int32_t kUnknownYear = 1900;
    Json json;
    json["machine"] = machine.shortName;
    json["title"] = Utf8FromWide(row.title);
    json["year"] = row.year == kUnknownYear ? Json(nullptr) : Json(row.year);
    json["regions"] = Utf8FromWide(row.regions);
    json["playTypes"] = row.playTypes;
    json["known"] = row.known;
    json["nameIndex"] = row.nameIndex;
    json["contentKey"] = Utf8FromWide(row.contentKey);
    json["path"] = row.path.string();
    return json;
}

void PrintJson(const Json& rows) {
    // A path may be no UTF-8.
    std::printf("%s\n", rows.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

} // namespace

int ListCommand(const LIST_OPTIONS& options) {
    bool whole = true;
    Json json = Json::array();
    ROW_CHOICES choices;
    choices.name = WideFromUtf8(options.name);
    choices.group = RowGroup::kNone;
    LibraryIndex index;
    std::string ignored; // without its file every game is read
    (void)index.Open(ResolvePath(kLibraryIndexFile), ignored);
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        if (!options.machine.empty() && options.machine != machine.shortName) {
            continue;
        }
        std::vector<GameListRow> rows;
        whole = ReadRows(machine, index, rows) && whole;
        for (const ROW_LINE& line : ApplyFilters(rows, choices)) {
            if (options.json) {
                json.push_back(JsonOf(machine, *line.row));
            } else {
                PrintText(machine, line);
            }
        }
    }
    if (options.json) {
        PrintJson(json);
    }
    return whole ? kExitDone : kExitFailed;
}
