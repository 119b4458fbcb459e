// GuiCursors: the theme's mouse cursors, as cursors of the display. The display itself
// moves them, so they keep up with the mouse. When SDL hides the cursor it hides these too.
//
// Until the theme's images are set, and where the display takes no cursor images, the system's cursor stays.
// Units: an image is of 64 units each way, its hot spot in the middle; cursors are made at the toolkit's density.
// Thread: main, while SDL's video runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

struct SDL_Cursor;

class GuiCursors {
public:
    GuiCursors() = default;
    ~GuiCursors() { End(); }
    GuiCursors(const GuiCursors&) = delete;
    GuiCursors& operator=(const GuiCursors&) = delete;

    // Shows the one that the window under the mouse wants. To be called once a round.
    void Update();
    void End(); // the system's again

private:
    static constexpr size_t kCount = 3;

    std::array<SDL_Cursor*, kCount> cursors{};
    double density = 0.0; // that they were made for; 0: none was
    SDL_Cursor* shown = nullptr;
};
