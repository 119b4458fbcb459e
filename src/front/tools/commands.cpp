#include "front/tools/commands.h"

#include "base/audio_rate.h"
#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/terminal.h"
#include "library/convert.h"
#include "library/game_source.h"
#include "settings/settings.h"

#include <cinttypes>
#include <cstdio>

namespace fs = std::filesystem;

namespace {

std::string SystemText(uint16_t system) {
    const MACHINE_FACTS* entry = FindMachineFacts(system);
    return entry != nullptr ? entry->name : "unknown (" + std::to_string(system) + ")";
}

void ShowImage(const FOUND_IMAGE& image) {
    const std::vector<uint8_t> prepared = PrepareImage(image.system, image.bytes);
    std::printf("  image: %s\n", Printable(image.stem).c_str());
    std::printf("    system: %s\n", SystemText(image.system).c_str());
    std::printf("    size: %zu bytes", prepared.size());
    if (prepared.size() != image.bytes.size()) {
        std::printf(" (%zu in the file, which is an interleaved dump)", image.bytes.size());
    }
    std::printf("\n    sha256: %s\n", HexText(Sha256(prepared)).c_str());
}

void ShowGame(const CGameFile& game) {
    const GAME_HEADER& header = game.Header();
    std::printf("  game: %s, %" PRIu32 " bytes packed to %" PRIu32 "\n",
                SystemText(header.system).c_str(), header.rawSize, header.packedSize);
    for (uint32_t i = 0; i < game.NameCount(); ++i) {
        NAME_VIEW name;
        if (!game.GetName(i, name)) {
            continue;
        }
        std::printf("  name: %s\n", Printable(name.title).c_str());
        if (!name.regions.empty()) {
            std::printf("    regions: %s\n", Printable(name.regions).c_str());
        }
        if (name.raw.year != 0) {
            std::printf("    year: %d\n", 1900 + name.raw.year);
        }
    }
    for (uint32_t i = 0; i < game.RomCount(); ++i) {
        std::string name;
        ROM_RECORD rom;
        if (game.GetRom(i, name, rom)) {
            std::printf("  piece: %s, %" PRIu32 " bytes\n    sha256: %s\n", Printable(name).c_str(),
                        rom.size, HexText(rom.sha256).c_str());
        }
    }
}

bool ShowFile(const fs::path& path) {
    std::string error;
    if (LowerAscii(std::string_view(path.extension().string())) == ".game") {
        CGameFile game;
        if (!OpenGameFile(path, true, game, error)) {
            Complain(error);
            return false;
        }
        std::printf("%s\n", Printable(path.string()).c_str());
        ShowGame(game);
        CGameFile whole;
        if (!OpenGameFile(path, false, whole, error)) {
            Complain(error);
            return false;
        }
        return true;
    }
    bool shown = false;
    bool whole = true;
    IMAGE_VISITOR visitor;
    visitor.image = [&](const FOUND_IMAGE& image) {
        if (!shown) {
            std::printf("%s\n", Printable(path.string()).c_str());
        }
        shown = true;
        ShowImage(image);
        return true;
    };
    visitor.fault = [&](const std::string& fault) {
        Complain(fault);
        whole = false;
    };
    if (!VisitImages(path, nullptr, visitor, error)) {
        Complain(error);
        return false;
    }
    return whole;
}

} // namespace

int InfoCommand(const std::vector<fs::path>& paths) {
    bool done = true;
    for (const fs::path& path : paths) {
        done = ShowFile(path) && done;
    }
    return done ? kExitDone : kExitFailed;
}

void ApplyAudioRate() {
    constexpr int32_t kLowestRate = 8000;
    constexpr int32_t kHighestRate = 192000;
    const int32_t rate = Settings().GetInt(L"audio_app_samplerate");
    if (rate >= kLowestRate && rate <= kHighestRate) {
        SetAudioRate(static_cast<uint32_t>(rate));
    } else {
        Complain("a sample rate of " + std::to_string(rate) + " is not possible; " +
                 std::to_string(AudioRate()) + " is used");
    }
}
