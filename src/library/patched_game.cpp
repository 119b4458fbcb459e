#include "library/patched_game.h"

#include "base/files.h"
#include "formats/game_file.h"
#include "formats/packing.h"
#include "formats/soft_patch.h"
#include "library/game_source.h"

#include <cstring>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Holds any image of the largest size as new bytes, with room for what surrounds them.
constexpr uint64_t kLargestPatch = 2 * kLargestImage;

struct VARIANT {
    NAME_RECORD name{};
    MACHINE_RECORD machine{};
    std::vector<uint8_t> image;
    bool patched = false;
};

std::optional<VARIANT> ReadVariant(const CGameFile& game, uint32_t index) {
    VARIANT variant;
    const uint8_t* machine = nullptr;
    uint32_t length = 0;
    std::optional<std::vector<uint8_t>> image = game.AssembleImage(index);
    if (!image || !game.GetRawName(index, variant.name)) {
        return std::nullopt;
    }
    if (game.GetMachineRecord(index, machine, length)) {
        std::memcpy(variant.machine.bytes, machine, length);
    }
    variant.image = *std::move(image);
    return variant;
}

// The first fault is told: it is that of the first variant, which most games have alone.
bool PatchVariants(std::span<const uint8_t> patch, std::vector<VARIANT>& variants,
                   std::string& error) {
    bool any = false;
    for (VARIANT& variant : variants) {
        std::vector<uint8_t> patched;
        std::string fault;
        variant.patched = ApplySoftPatch(patch, variant.image, kLargestImage, patched, fault);
        if (variant.patched) {
            variant.image = std::move(patched);
        } else if (error.empty()) {
            error = fault;
        }
        any |= variant.patched;
    }
    return any;
}

bool BuildFrom(const std::vector<VARIANT>& variants, uint16_t system, CGameFile& game) {
    std::vector<uint8_t> all;
    game.Create(false, system);
    for (uint32_t i = 0; i < variants.size(); ++i) {
        const VARIANT& variant = variants[i];
        if (all.size() + variant.image.size() > kImageLimit) {
            return false;
        }
        game.AddRom("v1.0", Sha256(variant.image), static_cast<uint32_t>(variant.image.size()));
        game.AddNameCopy(variant.name, variant.machine);
        (void)game.LinkRom(i, i);
        all.insert(all.end(), variant.image.begin(), variant.image.end());
    }
    game.ComputeHeaderHash();
    return game.SetData(std::move(all));
}

int32_t Selected(const std::vector<VARIANT>& variants, int32_t before) {
    if (before >= 0 && variants[static_cast<size_t>(before)].patched) {
        return before;
    }
    int32_t index = 0;
    while (!variants[static_cast<size_t>(index)].patched) {
        ++index;
    }
    return index;
}

} // namespace

fs::path PatchBeside(const fs::path& game) {
    for (const char* const extension : {".bps", ".BPS", ".ups", ".UPS", ".ips", ".IPS"}) {
        fs::path patch = game;
        patch.replace_extension(extension);
        std::error_code ignored;
        if (patch != game && fs::is_regular_file(patch, ignored)) {
            return patch;
        }
    }
    return {};
}

bool PatchGame(const fs::path& patch, CGameFile& game, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadFile(patch, bytes, error, kLargestPatch)) {
        return false;
    }
    std::vector<VARIANT> variants;
    variants.reserve(game.NameCount());
    for (uint32_t i = 0; i < game.NameCount(); ++i) {
        std::optional<VARIANT> variant = ReadVariant(game, i);
        if (!variant) {
            error = patch.string() + ": the image of the game is damaged";
            return false;
        }
        variants.push_back(*std::move(variant));
    }
    std::string fault;
    if (!PatchVariants(bytes, variants, fault)) {
        error = patch.string() + ": " + (fault.empty() ? "the game has no image" : fault);
        return false;
    }
    CGameFile patched;
    if (!BuildFrom(variants, game.Header().system, patched)) {
        error = patch.string() + ": makes too large a game";
        return false;
    }
    patched.selectedName = Selected(
        variants,
        game.selectedName < static_cast<int32_t>(variants.size()) ? game.selectedName : -1);
    game = std::move(patched);
    return true;
}
