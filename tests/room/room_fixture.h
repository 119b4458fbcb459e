// A context for the tests of the room's drawing, with a painter and files of furniture in memory.
#pragma once

#include "display/display_fixture.h"
#include "room/room_painter.h"
#include "room/room_scene.h"
#include "settings/settings.h"

#include <SDL_video.h>

#include <map>
#include <string>
#include <vector>

inline void* WindowLibraryLoader(const char* name) {
    return SDL_GL_GetProcAddress(name);
}

class RoomGlTest : public DisplayTest {
protected:
    void SetUp() override {
        DisplayTest::SetUp();
        RegisterDefaultSettings(Settings());
        Settings().SetBool(L"app_lighting", true);
        Settings().SetBool(L"app_anisotropicfiltering", false);
        Settings().SetBool(L"emu_gameroomfilter", false);
    }

    [[nodiscard]] ROOM_SERVICES Services() {
        return {WindowLibraryLoader,
                [this](std::string_view name) {
                    ++reads;
                    const auto found = files.find(std::string(name));
                    return found != files.end() ? found->second : Bytes();
                },
                [this](const std::string& message) { reports.push_back(message); },
                {}};
    }

    RoomFiles files;
    std::vector<std::string> reports;
    size_t reads = 0; // of files
};
