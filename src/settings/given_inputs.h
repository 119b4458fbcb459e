// Inputs of a session that do not come from the player's devices: those of a recording.
//
// While an object lives, `InputIsDown` on its thread answers for its session from it alone, whichever session is
// the active one. A recorder gives a frame the inputs that it has noted, so that the machine reads nothing else.
//
// Threads: the object belongs to the thread that made it. Objects nest: the innermost one answers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

class GivenInputs {
public:
    // `names[i]` is down if bit i of `down` is set; every other action is up. `names`, at most 32, outlive the object.
    GivenInputs(uint32_t sessionKey, std::span<const std::wstring_view> names, uint32_t down);
    ~GivenInputs();
    GivenInputs(const GivenInputs&) = delete;
    GivenInputs& operator=(const GivenInputs&) = delete;

    // The object that answers for a session on this thread; null if the devices do.
    [[nodiscard]] static GivenInputs* Of(uint32_t sessionKey);

    [[nodiscard]] bool IsDown(std::wstring_view name);

private:
    const uint32_t key;
    const std::span<const std::wstring_view> actions;
    const uint32_t bits;
    size_t next =
        0; // machines ask in the order of the names, so the search begins after the last one found
    GivenInputs* const outer;
};
