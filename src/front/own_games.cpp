#include "front/own_games.h"

#include "base/files.h"
#include "facts/machine_facts.h"
#include "formats/zip.h"
#include "front/assets.h"
#include "front/demo_database.h"
#include "front/demos.h"
#include "front/notices.h"
#include "settings/settings.h"

#include <algorithm>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr const wchar_t* kSetting = L"library_owngames";
constexpr int32_t kThisSet = 1;

// An archive of the game's media; empty without any.
std::vector<uint8_t> MediaOf(const DEMO& demo) {
    const std::string name = demo.name;
    ZipWriter writer;
    std::string error;
    bool any = false;
    for (const OBJECT_ASSET& asset : BuiltInMedia()) {
        if (asset.name.starts_with(name + ".") || asset.name.starts_with(name + "-")) {
            any = writer.Add(asset.name, asset.data, error) || any;
        }
    }
    return any ? writer.Finish(error) : std::vector<uint8_t>();
}

std::vector<uint8_t> GameOf(const DEMO& demo) {
    const Sha256Digest hash = Sha256(demo.image);
    for (CGameFile& entry : DemoDatabase(demo.system)) {
        if (entry.FindRom(hash) == 0) {
            return entry.WriteGameKeepingHash(demo.image);
        }
    }
    return {};
}

// The first fault is kept; the others mostly have the same cause.
void WriteNew(const fs::path& file, const std::vector<uint8_t>& bytes, std::string& fault) {
    std::error_code code;
    std::string error;
    if (!bytes.empty() && !fs::exists(file, code) &&
        !WriteFile(file, bytes, error, WriteMode::kCreate) && fault.empty()) {
        fault = error;
    }
}

void MakeFolders(std::string& fault) {
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        const fs::path folder = HomeFolder() / machine.folder;
        std::error_code code;
        fs::create_directories(folder, code);
        if (code && fault.empty()) {
            fault = folder.string() + ": folder cannot be made: " + code.message();
        }
    }
}

void WriteGames(std::string& fault) {
    for (const DEMO& demo : Demos()) {
        const std::vector<uint8_t> media = MediaOf(demo);
        if (media.empty()) {
            continue; // a test program
        }
        const fs::path folder = HomeFolder() / FindMachineFacts(demo.system)->folder;
        WriteNew(folder / (FileNameFromTitle(demo.title) + ".game"), GameOf(demo), fault);
        WriteNew(folder / "media" / (std::string(demo.name) + ".zip"), media, fault);
    }
}

} // namespace

void InstallOwnGames() {
    if (Settings().GetInt(kSetting) >= kThisSet) {
        return;
    }
    std::string fault;
    MakeFolders(fault);
    WriteGames(fault);
    if (fault.empty()) {
        Settings().SetInt(kSetting, kThisSet);
    } else {
        PostReport(fault + "; some games of our own are missing until a start that can write them");
    }
}
