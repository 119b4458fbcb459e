// The tables of docs/STATES.md, which say where every byte of a saved state lies.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// A field of a piece: `count` numbers of `width` bytes from `offset` on.
struct STATE_ROW {
    std::string
        name; // as in the record, for example "channels[2].slots[0].ar"; "-" for bytes without a field
    uint32_t offset = 0;
    uint32_t width = 0;
    uint32_t count = 0;
    bool isBool = false;
};

struct STATE_TABLE {
    uint8_t version = 0;
    uint32_t size = 0;           // of the piece, header included
    bool isOpen = false;         // more follows what the table lists
    std::vector<STATE_ROW> rows; // those after the header, in order
};

// The table under the heading `piece`, with the tables of its records in place of their names. Throws
// std::runtime_error for a piece that is not there, and where a table has a gap, an overlap or a wrong sum.
[[nodiscard]] STATE_TABLE ReadStateTable(const std::string& piece);

// The names of the pieces of a machine's state, in order. Throws for a machine that is not there.
[[nodiscard]] std::vector<std::string> ReadMachinePieces(const std::string& machine);
