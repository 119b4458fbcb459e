#include "front/video_module.h"

#include <SDL.h>

#include <array>
#include <filesystem>
#include <system_error>

namespace {

constexpr const char* kModule = "ombrelune-video.so";

// Beside the program, or where an installation has it.
constexpr std::array kFolders = {"", "../" OMBRELUNE_MODULE_FOLDER "/"};

VideoModuleEntry LoadModule(std::string& error) {
    char* const base = SDL_GetBasePath();
    const std::string programFolder = base != nullptr ? base : "";
    SDL_free(base);
    error = std::string("videos cannot be written: this program has no ") + kModule;
    for (const char* folder : kFolders) {
        const std::string path = programFolder + folder + kModule;
        std::error_code ignored;
        if (!std::filesystem::exists(path, ignored)) {
            continue;
        }
        // Never unloaded: its libraries do not mind, and threads of theirs may end late.
        void* const module = SDL_LoadObject(path.c_str());
        void* const entry =
            module != nullptr ? SDL_LoadFunction(module, kVideoModuleEntry) : nullptr;
        if (entry != nullptr) {
            error.clear();
            return reinterpret_cast<VideoModuleEntry>(entry);
        }
        error = std::string("videos cannot be written: ") + SDL_GetError();
    }
    return nullptr;
}

} // namespace

std::unique_ptr<CVideoFile> NewVideoFile(std::string& error) {
    static std::string reason;
    static const VideoModuleEntry entry = LoadModule(reason);
    error = reason;
    return std::unique_ptr<CVideoFile>(entry != nullptr ? entry() : nullptr);
}
