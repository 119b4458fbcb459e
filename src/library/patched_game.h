// Soft patches (formats/soft_patch.h) in games that are about to be played. A patch changes the image in memory alone;
// the file of the game stays as it is. A patched game has an image of its own, and thus saves of its own.
//
// Any thread; nothing is kept between calls. Failure: one line that names the patch and says what is wrong with it.
#pragma once

#include <filesystem>
#include <string>

class CGameFile;

// The patch that lies beside a game: the file of its name with ".bps", ".ups" or ".ips" for its extension, in small
// letters or in capitals. Of several the first in this order. Empty without one.
[[nodiscard]] std::filesystem::path PatchBeside(const std::filesystem::path& game);

// Changes every variant of the game that the patch is for, and selects the first of these unless the selected one is
// among them. Each variant is one piece afterwards, whose index is the variant's. False, with the game as it was, if the
// patch is for none.
[[nodiscard]] bool PatchGame(const std::filesystem::path& patch, CGameFile& game,
                             std::string& error);
