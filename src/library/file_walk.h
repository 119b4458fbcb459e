// The files at and below some paths.
#pragma once

#include <atomic>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

struct WALKED_FILE {
    std::filesystem::path path;
    bool named = false; // one of the paths itself, not found in a folder
};

// Appends the paths that are files, and the files of those that are folders, with all folders below, in
// alphabetical order. In a folder, names that begin with a dot and what is neither file nor folder are passed
// over. Symbolic links are followed, but every folder is entered once, so that links in a circle end. What cannot be
// read adds a line to `faults`, and the walk goes on. `stop`, which may be null, ends it early.
void WalkFiles(std::span<const std::filesystem::path> paths, std::vector<WALKED_FILE>& files,
               std::vector<std::string>& faults, const std::atomic<bool>* stop);
