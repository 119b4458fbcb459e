// Ten slots for saved states beside the one of the hotkeys, for each game and image.
//
// They lie in a folder of their own beside the game's archive: `<game name>.<image>.slots` for `<game name>.zip`,
// each slot in a file (state_snapshot.h):
//
//     slot-03.state          what is in slot 3
//     slot-03.before.state   what was there before it was written over or deleted
//     load.before.state      what was played before a slot was loaded
//     slot-03.new.state      a new one on its way to the slot
//     slot-03.swap.state     one on its way out, while the slot and the one before it change places
//     slots.lock             while a program is at work here: another one waits, and after three seconds refuses
//
// A slot is never without its old or its new content, whenever the program ends: what was begun is brought to an
// end with the next access. What is in a slot that cannot be read or loaded stays there.
//
// Threads: one at a time for a game, with no lock held: mostly that of SlotWorker. Failure: by result, with `text` a
// line for the player; after success it says what was done.
#pragma once

#include "host/state_snapshot.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

struct EMU_THREAD;

inline constexpr uint32_t kStateSlots = 10; // numbered from 1

// When it is, and how long the game has been played.
struct SLOT_STAMP {
    int64_t now = 0; // seconds since 1970
    uint64_t secondsPlayed = 0;
};

struct SLOT_FACTS {
    bool filled = false;
    bool hasBefore = false; // something can be brought back to it
    bool readable = false;  // the label is there
    STATE_SNAPSHOT label;   // without the state
};

struct SLOT_LIST {
    std::array<SLOT_FACTS, kStateSlots> slots; // slot n at n - 1
    bool hasLoadBefore = false;
};

// The folder of the session's game and image.
[[nodiscard]] std::filesystem::path SlotFolder(const EMU_THREAD& session);

[[nodiscard]] SLOT_LIST ListSlots(const std::filesystem::path& folder);

// The session's state to a slot. What was in it can be brought back.
[[nodiscard]] bool SaveToSlot(EMU_THREAD& session, uint32_t slot, const SLOT_STAMP& stamp,
                              std::string& text);

// A slot's state to the session. What was played before can be brought back, also after the program has ended. If the
// machine refuses the state, the game goes on as it was. `undoable`: whether there was room on the disk to keep it.
[[nodiscard]] bool LoadFromSlot(EMU_THREAD& session, uint32_t slot, const SLOT_STAMP& stamp,
                                std::string& text, bool* undoable = nullptr);

// What is deleted can be brought back too.
[[nodiscard]] bool DeleteSlot(const std::filesystem::path& folder, uint32_t slot,
                              std::string& text);

// The slot and what was there before change places, so a second call undoes the first.
[[nodiscard]] bool UndoSlot(const std::filesystem::path& folder, uint32_t slot, std::string& text);

// The session's state and what was played before the last load change places.
[[nodiscard]] bool UndoLoad(EMU_THREAD& session, const SLOT_STAMP& stamp, std::string& text);
