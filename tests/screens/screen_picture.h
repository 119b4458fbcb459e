// Writes what the toolkit shows as a PPM file, to be looked at: only if the environment names a folder for it.
#pragma once

#include "base/files.h"
#include "gui/manager.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

inline void KeepPicture(const std::string& name) {
    const char* const folder = std::getenv("OMBRELUNE_TEST_PICTURES");
    if (folder == nullptr) {
        return;
    }
    CGhostManager& manager = CGhostManager::Get();
    const GUI_RECT screen = manager.ScreenRect();
    const auto width = static_cast<int32_t>(screen.width * manager.Density());
    const auto height = static_cast<int32_t>(screen.height * manager.Density());
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height),
                                 0xFF000000);
    manager.SetCompositeBuffer(pixels.data(), width, height, width);
    manager.CompositeAll();
    manager.SetCompositeBuffer(nullptr, 0, 0, 0);
    std::string text = "P6 " + std::to_string(width) + " " + std::to_string(height) + " 255\n";
    for (const uint32_t pixel : pixels) {
        for (const uint32_t shift : {16u, 8u, 0u}) {
            text.push_back(static_cast<char>(pixel >> shift & 0xFF));
        }
    }
    const auto* const bytes = reinterpret_cast<const uint8_t*>(text.data());
    std::string error;
    static_cast<void>(
        WriteFile(std::filesystem::path(folder) / (name + ".ppm"), {bytes, text.size()}, error));
}
