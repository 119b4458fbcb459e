// A folder of a test's own, emptied and removed at its end.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string_view>
#include <vector>

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return path; }
    // Writes a file below the folder, creating its parents, and returns its path.
    std::filesystem::path Write(std::string_view name, std::span<const uint8_t> bytes) const;
    std::filesystem::path Write(std::string_view name, std::string_view text) const;
    [[nodiscard]] std::vector<uint8_t> Read(std::string_view name) const;

private:
    std::filesystem::path path;
};

// Makes a fresh folder the program's home for as long as it lives, and then restores the old one.
class TemporaryHome : public TemporaryFolder {
public:
    TemporaryHome();
    ~TemporaryHome();
    TemporaryHome(const TemporaryHome&) = delete;
    TemporaryHome& operator=(const TemporaryHome&) = delete;

private:
    std::filesystem::path before;
};
