// Games from anywhere, put into the library: each file is copied into the folder of its machine and converted there.
// The originals stay as they are.
//
// A file's machine is told by a database that knows its hash, then by its contents, then by its name
// (image_identity.h). What is there already, by hash, is passed over.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

struct MACHINE_FACTS;

struct ADDED_GAMES {
    size_t copied = 0;       // images and `.game` files that were not there
    size_t alreadyThere = 0; // these are passed over
    size_t waiting = 0; // of the copied: pieces of arcade boards whose other pieces are missing
    size_t untold = 0;  // images of which nothing tells the machine
    size_t failed = 0;  // what could not be read, copied or converted
    size_t others = 0;  // files in folders and zips that are no images
    std::vector<uint16_t> systems; // the machines of what was copied, each once
};

// Called by the thread that adds.
struct ADD_SINK {
    std::function<void(const std::string& line)> note; // a game that was made
    std::function<void(const std::string& line)>
        fault; // what failed, and what nothing tells the machine of
    // The file in hand; first all files are looked at, then those that were copied are converted.
    std::function<void(size_t done, size_t total, const std::string& name)> progress;
};

struct ADD_REQUEST {
    std::span<const std::filesystem::path> paths; // files, zips and folders, walked
    // The machine of a file that does not tell; null: none is assumed. A path that names a file, and not a folder or
    // a zip, is of this machine whatever it says.
    const MACHINE_FACTS* machine = nullptr;
    bool keepSources = false; // the setting `library_keepsources`
    const std::atomic<bool>* stop = nullptr;
};

// Adds what it can and goes on after faults. A stop ends it between two files; what has been copied until then is
// converted at the folder's next scan.
[[nodiscard]] ADDED_GAMES AddGames(const ADD_REQUEST& request, const ADD_SINK& sink);
