// Databases written, and read strictly.
//
// The program itself reads a database with ParseDatabase (game_file.h), which takes what it can and says nothing, so
// that a damaged database never keeps a player from his games. The tools that make and show databases want to know
// what is wrong with one; they read it here.
#pragma once

#include "formats/game_file.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The entries back to back, as a `.dat` file has them. Sets tag and headerSize in the entries; their hashes are
// written as they are, so whoever makes an entry calls ComputeHeaderHash.
[[nodiscard]] std::vector<uint8_t> WriteDatabase(std::span<CGameFile> entries);

// False, with nothing in `entries`, for the first thing that is wrong; `fault` is one line that names the entry, counted
// from 1, the byte of the file and the reason. Refused are:
// - records that are cut off, unknown or out of place, or that do not add up to the header's sizes,
// - an unknown system, or entries of several systems,
// - a header's hash that is neither empty nor that of the entry's records,
// - a name without a machine record, and a list with a piece that the entry does not have.
[[nodiscard]] bool ReadDatabaseStrictly(std::span<const uint8_t> bytes,
                                        std::vector<CGameFile>& entries, std::string& fault);
