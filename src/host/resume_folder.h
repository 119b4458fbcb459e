// ResumeFolder: where a running program keeps its resume files (resume_file.h). Two programs on one home folder have
// a folder each, so neither touches the files of the other.
//
//     .\resume\<n>.lock             held while a program has the folder <n>
//     .\resume\<n>\<name>.resume
//
// A program takes the first number that nobody holds, and the files of all others that nobody holds: those of
// programs that have ended. If both have a file of one name, the newer one counts; the older one is kept beside it as
// `<name>.older-<m>.resume`.
//
// Thread: the owner's; the files themselves are written by others. Failure: by result, or one line through
// HostReport.
#pragma once

#include "base/file_lock.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

class ResumeFolder {
public:
    // False with the cause if no folder can be had.
    [[nodiscard]] bool Open(std::string& error);
    [[nodiscard]] bool IsOpen() const { return lock.Taken(); }

    // The file of that name, whether there is one or not. The folder must be open.
    [[nodiscard]] std::filesystem::path FileOf(std::string_view name) const;

    // The names of all files that begin so, sorted.
    [[nodiscard]] std::vector<std::string> Names(std::string_view prefix) const;

private:
    void TakeOver(const std::filesystem::path& other) const;

    FileLock lock;
    std::filesystem::path folder;
};
