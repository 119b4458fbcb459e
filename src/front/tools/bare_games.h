// `ombrelune GAME`: arguments that name games where a command is expected, as a file manager gives them.
//
// One game is played in a window of its own, as by `play`, with that command's options; several are played on the sets
// of the room, as by `room`. A file with the name of a command is written with a slash: ./play.
#pragma once

#include <string>
#include <vector>

// The arguments with the command that they stand for before the first game; as they are if they have one, or begin
// with an option. False, with one line that says why, if a game is named that is not there.
[[nodiscard]] bool AddImpliedCommand(std::vector<std::string>& arguments,
                                     const std::vector<std::string>& commands, std::string& error);
