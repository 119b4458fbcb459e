#include "library/extract.h"

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "formats/zip.h"
#include "library/convert.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

struct PIECE {
    std::string name; // fit for a file name
    std::span<const uint8_t> bytes;
    Sha256Digest hash{}; // as the record says
};

// The pieces, each once: a game has its image once for every database entry that knew it. A board may have two chips
// of the same contents, which are two files.
std::vector<PIECE> DistinctPieces(const CGameFile& game) {
    std::vector<PIECE> pieces;
    for (uint32_t index = 0; index < game.RomCount(); ++index) {
        std::string name;
        ROM_RECORD record{};
        PIECE piece;
        if (!game.GetRom(index, name, record)) {
            continue;
        }
        std::copy(std::begin(record.sha256), std::end(record.sha256), piece.hash.begin());
        piece.name = FileNameFromTitle(name);
        if (piece.name.empty()) {
            piece.name = "piece" + std::to_string(index);
        }
        const bool board = game.Header().system == kSystemArcade;
        if (std::ranges::any_of(pieces, [&](const PIECE& other) {
                return other.hash == piece.hash && (!board || other.name == piece.name);
            })) {
            continue;
        }
        const uint64_t offset = game.RomOffset(index);
        if (offset + record.size <= game.Data().size()) {
            piece.bytes = game.Data().subspan(static_cast<size_t>(offset), record.size);
        }
        pieces.push_back(std::move(piece));
    }
    return pieces;
}

bool IsArchive(std::span<const uint8_t> bytes) {
    ZipReader reader;
    std::string ignored;
    return reader.Open(bytes, ignored) && reader.EntryCount() > 0;
}

// Gives the file the image in the form that was asked for, and the extension. False if it has no such form.
bool FillConsoleFile(uint16_t system, std::span<const uint8_t> image, ImageForm form,
                     IMAGE_FILE& file) {
    if (IsArchive(image)) {
        file.extension = ".zip";
    } else if (form == ImageForm::kInterleaved && system == kSystemMegaDrive) {
        file.extension = ".smd";
        return InterleaveImage(image, file.bytes);
    } else {
        file.extension = UsualExtension(system);
    }
    file.bytes.assign(image.begin(), image.end());
    return true;
}

IMAGE_FILE ArcadeFile(const PIECE& piece) {
    const fs::path name(piece.name);
    return {
        name.stem(), name.extension().string(), {piece.bytes.begin(), piece.bytes.end()}
    };
}

} // namespace

std::vector<IMAGE_FILE> ImageFiles(const CGameFile& game, const fs::path& stem, ImageForm form,
                                   std::vector<std::string>& faults) {
    const uint16_t system = game.Header().system;
    const std::vector<PIECE> pieces = DistinctPieces(game);
    std::vector<IMAGE_FILE> files;
    for (const PIECE& piece : pieces) {
        // Neither loading nor unpacking compares them.
        if (Sha256(piece.bytes) != piece.hash) {
            faults.push_back(piece.name + ": is damaged, its SHA-256 is not that of its record");
            continue;
        }
        if (system == kSystemArcade) {
            files.push_back(ArcadeFile(piece));
            continue;
        }
        IMAGE_FILE file;
        file.stem = stem;
        if (pieces.size() > 1) {
            file.stem += " (" + piece.name + ")";
        }
        if (FillConsoleFile(system, piece.bytes, form, file)) {
            files.push_back(std::move(file));
        } else {
            faults.push_back(piece.name + ": an image of " + std::to_string(piece.bytes.size()) +
                             " bytes has no interleaved form");
        }
    }
    if (pieces.empty()) {
        faults.emplace_back("holds no image");
    }
    return files;
}
