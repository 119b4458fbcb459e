// Our own games in the player's library, with their boxes, screenshots and texts, so that it is a full place on the
// first start.
//
// They are put there once (the setting `library_owngames` holds how often the set of games has changed): what the
// player deletes or changes stays so. Thread: main.
#pragma once

// Makes the folders of all systems, and writes the games that have media. Nothing that is there is replaced; what
// cannot be written is reported, and tried again with the next start.
void InstallOwnGames();
