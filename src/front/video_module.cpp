#include "front/video_module.h"

#include <SDL.h>

#include <array>

namespace {

constexpr const char* kModule = "ombrelune-video.so";

// Beside the program, or where an installation has it.
constexpr std::array kFolders = {"", "../" OMBRELUNE_MODULE_FOLDER "/"};

VideoModuleEntry LoadModule(std::string& error) {
    char* const base = SDL_GetBasePath();
    const std::string programFolder = base != nullptr ? base : "";
    SDL_free(base);
    for (const char* folder : kFolders) {
        // Never unloaded: its libraries do not mind, and threads of theirs may end late.
        void* const module = SDL_LoadObject((programFolder + folder + kModule).c_str());
        if (module == nullptr) {
            continue;
        }
        if (void* const entry = SDL_LoadFunction(module, kVideoModuleEntry); entry != nullptr) {
            return reinterpret_cast<VideoModuleEntry>(entry);
        }
    }
    error = std::string("videos cannot be written: ") + SDL_GetError();
    return nullptr;
}

} // namespace

std::unique_ptr<CVideoFile> NewVideoFile(std::string& error) {
    static std::string reason;
    static const VideoModuleEntry entry = LoadModule(reason);
    error = reason;
    return std::unique_ptr<CVideoFile>(entry != nullptr ? entry() : nullptr);
}
