// Turns what lies in a system's folder into `.game` files. Needs no Catalogue.
//
// Three steps: gather (read and hash every file, and every image inside a zip), known games (each
// database entry whose pieces are all there becomes a game), and the rest, file by file.
// Reading, hashing and packing run on all processors; files are written, reported and removed in the
// order of the list, as if one thread did it all.
//
// A source is removed only after its `.game` has been written, flushed, read again and found to unpack
// to the source's bytes (of an interleaved Mega Drive dump: to the bytes in order), and only if the
// source has not changed meanwhile. A power cut at any instant leaves the source, the finished game, or
// both. Where both are left, the next conversion finds that the game is younger than the source and
// holds the same, and only removes the source.
//
// Zips: one whose images all went into games of step 2 is removed. If an image of it is in no such game,
// step 3 makes the whole archive, byte for byte, the image of an unknown game, and so loses nothing. A
// zip stays where it is, with a line in the log, if something in it is in no game: an entry that is no
// image of this system or cannot be unpacked, a game that could not be written, or an arcade piece that
// no entry wants. Archives are never taken for interleaved dumps.
// A piece of several boards goes when the games of all boards that are complete have been written.
//
// With `keepSources` sources move into the subfolder `sources` instead of being deleted.
// An empty file, one that can be no game (image_check.h) and that the database does not know, a file of more than
// kLargestImage bytes (a zip of more than kLargestZip) and what is no regular file are not converted; each gets a
// line.
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

class CGameDatabase;

// The four counters that the player sees.
enum class ConversionCount : uint8_t { kNone, kGood, kAuto, kError, kSkipped };

// What a conversion tells. Called by the thread that runs it.
struct CONVERSION_SINK {
    // A line for the log, which may be empty, and the counter that goes up by one with it.
    std::function<void(ConversionCount count, const std::wstring& line)> report;
    // How much is done, 0 to 1, never falling. Its pace follows the bytes, not the files.
    std::function<void(double done)> progress;
    // The file in hand; may be empty.
    std::function<void(const std::filesystem::path& path)> file;
};

struct CONVERSION {
    std::filesystem::path folder;
    uint16_t system = 0;
    CGameDatabase* database = nullptr;       // its pending list is emptied first
    bool keepSources = false;                // the setting `library_keepsources`
    const std::atomic<bool>* stop = nullptr; // ends the conversion after the file in hand
    unsigned threads = 0;                    // 0: one for each processor
};

enum class ConversionEnd : uint8_t {
    kDone,
    kStopped,  // the rest is left for the next conversion
    kLocked,   // another conversion works on the folder, or it cannot be written; reported
    kNoFolder, // the folder cannot be read; reported
};

// Takes the folder's lock, lists the folder and converts. Errors of single files are reported and
// counted, and the others go on.
ConversionEnd ConvertFolder(const CONVERSION& conversion, const CONVERSION_SINK& sink);
