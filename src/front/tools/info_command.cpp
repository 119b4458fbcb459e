// `ombrelune info`: what files hold, as text or as JSON.

#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/terminal.h"
#include "front/tools/commands.h"
#include "host/session.h"
#include "library/convert.h"
#include "library/database_rules.h"
#include "library/game_source.h"
#include "library/image_check.h"
#include "library/image_facts.h"
#include "machines/machine_options.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <map>

namespace fs = std::filesystem;

namespace {

using Json = nlohmann::ordered_json;

std::string MachineText(uint16_t system) {
    const MACHINE_FACTS* const machine = FindMachineFacts(system);
    return machine != nullptr ? machine->name : "unknown (" + std::to_string(system) + ")";
}

// Whether a machine takes the game; the reason why not.
bool CanBePlayed(CGameFile& game, std::string& reason) {
    CGameFile* const games[2] = {&game, nullptr};
    const OptionBlock options = DefaultMachineOptions(game);
    if (EmuCreateSession(1, games, options.data(), "info")) {
        return true;
    }
    reason = EmuLastError();
    reason = reason.empty() ? "the machine refuses it" : reason;
    return false;
}

void AddPlayable(CGameFile& game, const std::string& refusal, Json& json) {
    std::string reason = refusal;
    const bool playable = reason.empty() && CanBePlayed(game, reason);
    json["playable"] = playable;
    json["reason"] = playable ? Json(nullptr) : Json(reason);
}

void AddFacts(const IMAGE_FACTS& facts, const std::string& record, Json& json) {
    const auto text = [](const std::string& value) {
        return value.empty() ? Json(nullptr) : Json(value);
    };
    Json header;
    header["title"] = text(facts.title);
    header["serial"] = text(facts.serial);
    header["regions"] = text(facts.regions);
    header["board"] = text(facts.board);
    header["battery"] = facts.battery ? Json(*facts.battery) : Json(nullptr);
    header["checksum"] = nullptr;
    if (facts.checksum) {
        header["checksum"] = {
            {"stated",   facts.checksum->stated                            },
            {"computed", facts.checksum->computed                          },
            {"right",    facts.checksum->stated == facts.checksum->computed}
        };
    }
    json["header"] = header;
    json["setup"] = text(record); // what the program, or its database, takes the cartridge for
}

std::string RecordOf(const CGameFile& game) {
    const uint8_t* record = nullptr;
    uint32_t length = 0;
    return game.GetMachineRecord(0, record, length) ? RecordWords(game.Header().system, record)
                                                    : std::string();
}

void AddNames(const CGameFile& game, Json& json) {
    json["names"] = Json::array();
    for (uint32_t i = 0; i < game.NameCount(); ++i) {
        NAME_VIEW name;
        if (game.GetName(i, name)) {
            json["names"].push_back({
                {"title",   name.title                                                     },
                {"regions", name.regions                                                   },
                {"year",    name.raw.year == 0 ? Json(nullptr) : Json(1900 + name.raw.year)}
            });
        }
    }
    json["pieces"] = Json::array();
    for (uint32_t i = 0; i < game.RomCount(); ++i) {
        std::string name;
        ROM_RECORD rom;
        if (game.GetRom(i, name, rom)) {
            json["pieces"].push_back({
                {"name",   name               },
                {"size",   rom.size           },
                {"sha256", HexText(rom.sha256)}
            });
        }
    }
}

// One file, with everything in it.
class FileInfo {
public:
    FileInfo(const fs::path& file, const MACHINE_FACTS* asked)
        : path(file)
        , machine(asked) {}

    // False if something of it cannot be shown; `json` then says what under "error".
    bool Read(Json& json) {
        json["file"] = path.string();
        json["error"] = nullptr;
        json["games"] = Json::array();
        const bool isGame = LowerAscii(std::string_view(path.extension().string())) == ".game";
        const bool whole = isGame ? ReadGame(json) : ReadImages(json);
        if (!whole) {
            json["error"] = error;
        }
        return whole;
    }

private:
    bool ReadGame(Json& json) {
        CGameFile game;
        if (!OpenGameFile(path, true, game, error)) {
            return false;
        }
        Json row;
        row["entry"] = nullptr;
        row["machine"] = MachineText(game.Header().system);
        row["size"] = game.Header().rawSize;
        row["packedSize"] = game.Header().packedSize;
        AddNames(game, row);
        const bool whole = OpenGameFile(path, false, game, error);
        if (whole) {
            AddImage(game, row);
        }
        json["games"].push_back(row);
        return whole && AddArchived(json);
    }

    // What is played of a `.game`.
    void AddImage(CGameFile& game, Json& row) const {
        CGameFile opened;
        std::string title;
        std::string note;
        std::string refusal;
        if (!OpenGame(path, {machine, {}}, opened, title, note, refusal)) {
            refusal = refusal.starts_with(path.string() + ": ")
                          ? refusal.substr(path.string().size() + 2)
                          : refusal;
        }
        game.selectedName = 0;
        const auto image = game.AssembleImage(0);
        AddFacts(image ? ReadImageFacts(game.Header().system, *image) : IMAGE_FACTS{},
                 RecordOf(game), row);
        AddPlayable(opened, refusal, row);
    }

    // The games of a `.game` whose image is an archive.
    bool AddArchived(Json& json) {
        std::vector<ARCHIVED_GAME> games;
        if (!ListArchivedGames(path, machine, games, error)) {
            return false;
        }
        for (const ARCHIVED_GAME& archived : games) {
            CGameFile game;
            std::string title;
            std::string note;
            if (!OpenGame(path, {machine, archived.entry}, game, title, note, error)) {
                return false;
            }
            Json row;
            row["entry"] = archived.entry;
            const auto image = game.AssembleImage(0);
            AddBuilt(game, image ? *image : std::vector<uint8_t>(), {}, row);
            json["games"].push_back(row);
        }
        return true;
    }

    static void AddBuilt(CGameFile& game, std::span<const uint8_t> image,
                         const std::string& refusal, Json& row) {
        row["machine"] = MachineText(game.Header().system);
        row["size"] = image.size();
        row["sha256"] = HexText(Sha256(image));
        row["names"] = Json::array();
        row["pieces"] = Json::array();
        if (refusal.empty()) {
            AddNames(game, row);
        }
        AddFacts(ReadImageFacts(game.Header().system, image), RecordOf(game), row);
        AddPlayable(game, refusal, row);
    }

    bool ReadImages(Json& json) {
        bool whole = true;
        IMAGE_VISITOR visitor;
        visitor.image = [&](const FOUND_IMAGE& image) {
            whole = AddFound(image, json) && whole;
            return true;
        };
        visitor.fault = [&](const std::string& fault) {
            error = fault;
            whole = false;
        };
        return VisitImages(path, machine, visitor, error) && whole;
    }

    // False for the file itself that can be no game; in an archive that is worth a line as any other.
    bool AddFound(const FOUND_IMAGE& image, Json& json) {
        CGameFile game;
        bool known = false;
        const bool built =
            BuildGame(image.system, image.stem, image.bytes, Database(image.system), game, known);
        std::string refusal = known ? std::string() : CheckImage(image.system, image.bytes).reason;
        if (!refusal.empty() && image.entry.empty()) {
            error = path.string() + ": " + refusal;
            return false;
        }
        if (refusal.empty() && !built) {
            refusal = "cannot be played by itself";
        }
        game.selectedName = 0;
        const std::vector<uint8_t> prepared = PrepareImage(image.system, image.bytes);
        Json row;
        row["entry"] = image.entry.empty() ? Json(nullptr) : Json(image.entry);
        row["known"] = known;
        row["interleaved"] = prepared.size() != image.bytes.size();
        AddBuilt(game, prepared, refusal, row);
        row["machine"] = MachineText(image.system); // a game that is not built has none
        json["games"].push_back(row);
        return true;
    }

    const std::vector<CGameFile>& Database(uint16_t system) {
        const auto [database, added] = databases.try_emplace(system);
        if (added) {
            database->second = LoadDatabase(system);
        }
        return database->second;
    }

    const fs::path& path;
    const MACHINE_FACTS* machine;
    std::map<uint16_t, std::vector<CGameFile>> databases;
    std::string error;
};

// "  label: value", unless there is none.
void PrintFact(const char* label, const Json& value) {
    if (value.is_string() && !value.get_ref<const std::string&>().empty()) {
        std::printf("    %s: %s\n", label, Printable(value.get<std::string>()).c_str());
    }
}

void PrintChecksum(const Json& checksum) {
    if (checksum.is_null()) {
        return;
    }
    const unsigned stated = checksum["stated"];
    const unsigned computed = checksum["computed"];
    if (stated == 0 && computed != 0) {
        std::printf("    checksum: none in the header; the image has %04X\n", computed);
    } else if (stated == computed) {
        std::printf("    checksum: %04X, right\n", stated);
    } else {
        std::printf("    checksum: %04X in the header, but the image has %04X\n", stated, computed);
    }
}

void PrintGame(const Json& row) {
    const bool isFile = row.contains("packedSize");
    if (isFile) {
        std::printf("  game: %s, %u bytes packed to %u\n",
                    row["machine"].get<std::string>().c_str(), row["size"].get<uint32_t>(),
                    row["packedSize"].get<uint32_t>());
    } else {
        const Json& entry = row["entry"];
        const std::string name = entry.is_string() ? entry.get<std::string>() : "";
        std::printf(
            "  image: %s%s%llu bytes%s\n", Printable(name).c_str(), name.empty() ? "" : ", ",
            static_cast<unsigned long long>(row["size"].get<uint64_t>()),
            row.value("interleaved", false) ? ", without the header of an interleaved dump" : "");
        PrintFact("machine", row["machine"]);
    }
    for (const Json& name : row["names"]) {
        std::printf("  name: %s\n", Printable(name["title"].get<std::string>()).c_str());
        PrintFact("regions", name["regions"]);
        if (name["year"].is_number()) {
            std::printf("    year: %d\n", name["year"].get<int>());
        }
    }
    for (const Json& piece : row["pieces"]) {
        std::printf("  piece: %s, %u bytes\n    sha256: %s\n",
                    Printable(piece["name"].get<std::string>()).c_str(),
                    piece["size"].get<uint32_t>(), piece["sha256"].get<std::string>().c_str());
    }
    if (row.contains("header")) {
        const Json& header = row["header"];
        PrintFact("title in the header", header["title"]);
        PrintFact("serial number", header["serial"]);
        PrintFact("region in the header", header["regions"]);
        PrintFact("board", header["board"]);
        PrintFact("set up as", row["setup"]);
        if (header["battery"].is_boolean()) {
            std::printf("    battery: %s\n", header["battery"].get<bool>() ? "yes" : "no");
        }
        PrintChecksum(header["checksum"]);
        std::printf("    playable: %s\n", row["playable"].get<bool>() ? "yes" : "no");
        PrintFact("reason", row["reason"]);
    }
}

} // namespace

int InfoCommand(const INFO_OPTIONS& options) {
    const MACHINE_FACTS* const machine = FindMachineFacts(std::string_view(options.machine));
    Json all = Json::array();
    bool done = true;
    for (const fs::path& path : options.paths) {
        Json json;
        const bool whole = FileInfo(path, machine).Read(json);
        if (!options.json && !json["games"].empty()) {
            std::printf("%s\n", Printable(path.string()).c_str());
            for (const Json& row : json["games"]) {
                PrintGame(row);
            }
        }
        if (!whole) {
            Complain(json["error"].get<std::string>());
            done = false;
        }
        all.push_back(std::move(json));
    }
    if (options.json) {
        // A path may be no UTF-8.
        std::printf("%s\n", all.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
    }
    return done ? kExitDone : kExitFailed;
}
