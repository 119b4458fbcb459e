// Snapshots: a machine's state with what a player knows it by, in a file of its own.
//
// A snapshot is taken of a running session, kept in a file, and given back to a session later. The file is a zip
// (docs/FORMATS.md) of
//
//     about.xml     the times, the texts, and the length and hash of the other two
//     picture.png   the picture that was shown; missing if there was none
//     state         the machine's state
//
// It is replaced in one step. Whatever its bytes, reading ends in a result: every length is compared with a limit
// before anything of that length is allocated, every hash is checked, and nothing is returned of a damaged file.
//
// Threads: any, with neither the list lock nor a session's `lock` held. Failure: by result; `error` is one line
// that names the file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct EMU_THREAD;

// Limits of a snapshot, which a writer must keep as well.
inline constexpr uint32_t kLargestSnapshotState = uint32_t{1} << 24; // bytes
inline constexpr uint32_t kLongestSnapshotSide = 1024;               // pixels of its picture
inline constexpr uint32_t kMostSnapshotTexts = 64;
inline constexpr uint32_t kLongestSnapshotName = 64; // bytes
inline constexpr uint32_t kLongestSnapshotText = 4096;

struct SNAPSHOT_PICTURE {
    uint32_t width = 0; // in pixels; 0 if there is no picture
    uint32_t height = 0;
    float aspect = 0;             // of the display, width to height; 0.01 to 100
    std::vector<uint32_t> pixels; // 0xFFRRGGBB, rows from the top
};

// What else the one who keeps a snapshot wants to find in it again: the game's file, the set that it ran on, the
// machine's options. The name is not empty; neither holds a NUL.
struct SNAPSHOT_TEXT {
    std::string name;
    std::string value; // UTF-8; invalid bytes are kept as they are
};

struct STATE_SNAPSHOT {
    std::vector<uint8_t> state; // as the machine's SaveState returned it; not empty
    SNAPSHOT_PICTURE picture;
    int64_t takenAt = 0;        // seconds since 1970, UTC
    uint64_t secondsPlayed = 0; // how long the game had been played by then
    std::vector<SNAPSHOT_TEXT> texts;
};

// The first text of this name; empty if there is none.
[[nodiscard]] std::string SnapshotText(const STATE_SNAPSHOT& snapshot, std::string_view name);

// Takes the session's state and the newest picture that it has presented, which is that of the state or of the
// frame before; the rest is the caller's. A session that shows television static has a picture of that, and one
// that presents nowhere has none. No session waits for more than these two copies. Not on the display's thread
// while it holds a picture. False, after a report, if the machine returns no state.
//
// The session is the caller's own or pinned (session_list.h).
[[nodiscard]] bool EmuTakeSnapshot(EMU_THREAD& session, STATE_SNAPSHOT& snapshot);

// Gives a state to the session's machine, and ends its static. If the machine refuses it, it goes on as if nothing
// had happened. With `before`, what was left is stored there as EmuTakeSnapshot stores it, also if nothing was
// loaded.
[[nodiscard]] bool EmuGiveState(EMU_THREAD& session, std::span<const uint8_t> state,
                                STATE_SNAPSHOT* before = nullptr);

// ---- Files.

[[nodiscard]] bool WriteSnapshot(const std::filesystem::path& path, const STATE_SNAPSHOT& snapshot,
                                 std::string& error);
[[nodiscard]] bool ReadSnapshot(const std::filesystem::path& path, STATE_SNAPSHOT& snapshot,
                                std::string& error);
// All but the state, which is neither unpacked nor checked: for a list of snapshots.
[[nodiscard]] bool ReadSnapshotLabel(const std::filesystem::path& path, STATE_SNAPSHOT& snapshot,
                                     std::string& error);

// The same in memory; the error names no file. Empty on failure.
[[nodiscard]] std::vector<uint8_t> PackSnapshot(const STATE_SNAPSHOT& snapshot, std::string& error);
enum class SnapshotParts { kAll, kLabel };
[[nodiscard]] bool UnpackSnapshot(std::span<const uint8_t> file, SnapshotParts parts,
                                  STATE_SNAPSHOT& snapshot, std::string& error);
