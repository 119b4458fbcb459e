// A system's folder of a test's own, with images, zips and a database, and its conversion.
#pragma once

#include "base/text.h"
#include "formats/hand_made.h"
#include "formats/zip.h"
#include "library/folder_conversion.h"
#include "library/game_database.h"

#include "support/temporary_folder.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct NAMED_BYTES {
    std::string name;
    Bytes bytes;
};

inline Bytes ZipOf(const std::vector<NAMED_BYTES>& entries) {
    ZipWriter writer;
    std::string error;
    for (const NAMED_BYTES& entry : entries) {
        EXPECT_TRUE(writer.Add(entry.name, entry.bytes, error)) << error;
    }
    return writer.Finish(error);
}

// A database entry of these pieces, with one name that uses them all.
inline Bytes EntryOf(uint16_t system, std::string_view fileName,
                     const std::vector<NAMED_BYTES>& pieces) {
    CGameFile entry;
    entry.Create(true, system);
    entry.SetGadaText(fileName);
    entry.AddNameFromTitle("Known " + std::string(fileName), 0, 1, {});
    for (const NAMED_BYTES& piece : pieces) {
        entry.AddRom(piece.name, Sha256(piece.bytes), static_cast<uint32_t>(piece.bytes.size()));
        EXPECT_TRUE(entry.LinkRom(0, entry.RomCount() - 1));
    }
    entry.ComputeHeaderHash();
    return entry.Serialise(true);
}

// Bytes without a pattern, made from a number.
inline Bytes Noise(uint64_t seed, size_t size) {
    return CRandom(seed).Fill(size);
}

class GameFolder : public TemporaryFolder {
public:
    explicit GameFolder(uint16_t number, const Bytes& entries = {})
        : system(number)
        , database(ParseDatabase(entries.data(), entries.size())) {}

    ConversionEnd Convert() {
        log.clear();
        good = automatic = errors = skipped = 0;
        CONVERSION conversion;
        conversion.folder = Path();
        conversion.system = system;
        conversion.database = &database;
        conversion.keepSources = keepSources;
        conversion.stop = &stop;
        conversion.threads = threads;
        CONVERSION_SINK sink;
        sink.report = [this](ConversionCount count, const std::wstring& line) {
            log.push_back(Utf8FromWide(line));
            good += count == ConversionCount::kGood ? 1 : 0;
            automatic += count == ConversionCount::kAuto ? 1 : 0;
            errors += count == ConversionCount::kError ? 1 : 0;
            skipped += count == ConversionCount::kSkipped ? 1 : 0;
            if (onReport) {
                onReport();
            }
        };
        sink.progress = [this](double done) { progress.push_back(done); };
        return ConvertFolder(conversion, sink);
    }

    // Good, automatic, errors and skipped.
    [[nodiscard]] std::vector<int> Counts() const { return {good, automatic, errors, skipped}; }

    // The names of everything in the folder, folders with a slash at their end.
    [[nodiscard]] std::set<std::string> Names(const std::string& below = "") const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(Path() / below)) {
            std::error_code ignored;
            const bool isFolder =
                entry.symlink_status(ignored).type() == std::filesystem::file_type::directory;
            names.insert(entry.path().filename().string() + (isFolder ? "/" : ""));
        }
        return names;
    }

    [[nodiscard]] Bytes ImageOf(const std::string& name) const {
        CGameFile game;
        EXPECT_TRUE(LoadGameFile(false, Path() / name, game)) << name;
        return {game.Data().begin(), game.Data().end()};
    }

    [[nodiscard]] bool Logged(const std::string& line) const {
        return std::find(log.begin(), log.end(), line) != log.end();
    }
    // Whether a line names the file and contains the text.
    [[nodiscard]] bool LoggedOf(const std::string& name, const std::string& text) const {
        return std::any_of(log.begin(), log.end(), [&](const std::string& line) {
            return line.find(name) != std::string::npos && line.find(text) != std::string::npos;
        });
    }
    [[nodiscard]] std::string At(const std::string& name) const { return (Path() / name).string(); }

    uint16_t system;
    CGameDatabase database;
    bool keepSources = false;
    unsigned threads = 3;
    std::atomic<bool> stop{false};
    std::function<void()> onReport;
    std::vector<std::string> log;
    std::vector<double> progress;

private:
    int good = 0;
    int automatic = 0;
    int errors = 0;
    int skipped = 0;
};
