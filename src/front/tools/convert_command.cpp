// `ombrelune convert`: `.game` files of ROMs and zips, one by one or of whole folders.

#include "base/files.h"
#include "base/text.h"
#include "facts/machine_facts.h"
#include "formats/game_file.h"
#include "front/tools/commands.h"
#include "front/tools/interruption.h"
#include "front/tools/progress_bar.h"
#include "library/convert.h"
#include "library/file_walk.h"
#include "library/free_name.h"
#include "library/game_source.h"
#include "library/image_check.h"

#include <map>

namespace fs = std::filesystem;

namespace {

bool HasExtension(const fs::path& path, std::string_view extension) {
    return LowerAscii(std::string_view(path.extension().string())) == extension;
}

class Converter {
public:
    explicit Converter(const CONVERT_OPTIONS& convertOptions)
        : options(convertOptions)
        , machine(FindMachineFacts(std::string_view(convertOptions.machine))) {}

    int Run();

private:
    void TakeNamed(const fs::path& path);
    void TakeFound(const fs::path& path);
    void TakeImage(const fs::path& path, bool named, const FOUND_IMAGE& image);
    void Place(const fs::path& path, const FOUND_IMAGE& image, std::span<const uint8_t> game);
    void Fail(const std::string& line);
    [[nodiscard]] const std::vector<CGameFile>& Database(uint16_t system);
    [[nodiscard]] std::string Summary() const;

    const CONVERT_OPTIONS& options;
    const MACHINE_FACTS* machine;                         // may be null
    std::map<uint16_t, std::vector<CGameFile>> databases; // each read once
    Interruption interruption;
    ProgressBar bar;
    size_t made = 0;
    size_t alreadyThere = 0;
    size_t failed = 0;
    size_t others = 0;
};

void Converter::Fail(const std::string& line) {
    ++failed;
    bar.Complain(line);
}

const std::vector<CGameFile>& Converter::Database(uint16_t system) {
    const auto [database, added] = databases.try_emplace(system);
    if (added) {
        database->second = LoadDatabase(system);
    }
    return database->second;
}

void Converter::Place(const fs::path& path, const FOUND_IMAGE& image,
                      std::span<const uint8_t> game) {
    const fs::path folder = options.outFolder.empty() ? path.parent_path() : options.outFolder;
    PLACED_FILE placed;
    std::string error;
    if (!WriteBesideOthers(folder, FileNameFromTitle(image.stem), ".game", game, placed, error)) {
        Fail(error);
        return;
    }
    ++(placed.alreadyThere ? alreadyThere : made);
    bar.Print((placed.alreadyThere ? "already there " : "made ") + placed.path.string());
}

// A text or a picture beside games is passed over, unless it is the very file that was named.
void Converter::TakeImage(const fs::path& path, bool named, const FOUND_IMAGE& image) {
    const std::string label = path.string() + (image.entry.empty() ? "" : ": " + image.entry);
    std::vector<uint8_t> game;
    bool known = false;
    const bool whole =
        ConvertImage(image.system, image.stem, image.bytes, Database(image.system), game, known);
    const IMAGE_VERDICT verdict = known ? IMAGE_VERDICT{} : CheckImage(image.system, image.bytes);
    if (verdict.fault == ImageFault::kOtherKind && !(named && image.entry.empty())) {
        ++others;
    } else if (verdict.fault != ImageFault::kNone) {
        Fail(label + ": " + verdict.reason);
    } else if (!whole) {
        Fail(label + ": cannot be converted by itself");
    } else {
        Place(path, image, game);
    }
}

// A file that holds no game is a failure.
void Converter::TakeNamed(const fs::path& path) {
    if (HasExtension(path, ".game")) {
        Fail(path.string() + ": is a .game already");
        return;
    }
    const size_t before = made + alreadyThere + failed;
    IMAGE_VISITOR visitor;
    visitor.image = [&](const FOUND_IMAGE& image) {
        TakeImage(path, true, image);
        return !interruption.Requested();
    };
    visitor.fault = [&](const std::string& fault) { Fail(fault); };
    std::string error;
    if (!VisitImages(path, machine, visitor, error)) {
        if (!interruption.Requested()) { // which ends a wait for the file with an error
            Fail(error);
        }
    } else if (made + alreadyThere + failed == before) {
        Fail(path.string() + ": holds no game image");
    }
}

// In a folder whatever is no game of the machine is passed over.
void Converter::TakeFound(const fs::path& path) {
    const bool isZip = HasExtension(path, ".zip");
    if (!isZip && SystemOfExtension(path.extension().string()) == 0) {
        ++others; // is not even read
        return;
    }
    IMAGE_VISITOR visitor;
    visitor.image = [&](const FOUND_IMAGE& image) {
        if (image.system == 0 || (machine != nullptr && machine->system != image.system)) {
            ++others;
        } else {
            TakeImage(path, false, image);
        }
        return !interruption.Requested();
    };
    visitor.fault = [&](const std::string& fault) { Fail(fault); };
    std::string error;
    if (!VisitAllFiles(path, visitor, error) && !interruption.Requested()) {
        Fail(error);
    }
}

std::string Converter::Summary() const {
    std::string text =
        std::to_string(made) + " made, " + std::to_string(alreadyThere) + " already there";
    if (failed > 0) {
        text += ", " + std::to_string(failed) + " failed";
    }
    if (others > 0) {
        text += ", " + std::to_string(others) + " other files";
    }
    return text;
}

int Converter::Run() {
    std::vector<WALKED_FILE> files;
    std::vector<std::string> faults;
    WalkFiles(options.paths, files, faults, &interruption.Flag());
    for (const std::string& fault : faults) {
        Fail(fault);
    }
    for (size_t i = 0; i < files.size() && !interruption.Requested(); ++i) {
        bar.Show(i, files.size(), files[i].path.filename().string());
        if (files[i].named) {
            TakeNamed(files[i].path);
        } else {
            TakeFound(files[i].path);
        }
    }
    bar.Print(Summary());
    if (interruption.Requested()) {
        return kExitInterrupted;
    }
    return failed == 0 ? kExitDone : kExitFailed;
}

} // namespace

int ConvertCommand(const CONVERT_OPTIONS& options) {
    return Converter(options).Run();
}
