// A script of button presses: lines "FRAME ACTION down|up", with '#' comments and empty lines.
//
// Actions have the names that `ombrelune actions` prints, spaces included. Every action is bound to a
// code of its own that no device has, so that a script presses actions whatever keys they are bound to
// and several actions that share a key stay apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class SettingsStore;

struct INPUT_EVENT {
    uint32_t frame; // before which it happens; frames count from 1
    size_t action;  // index into InputActions
    bool down;
};

class InputScript {
public:
    // False, with the line and what is wrong with it, for a text that is no script.
    [[nodiscard]] bool Parse(std::string_view text, std::string& error);

    // The same from a file; the error names it.
    [[nodiscard]] bool Load(const std::string& path, std::string& error);

    // Binds every action to its own code in place of what the store holds.
    static void BindActions(SettingsStore& store);

    // Feeds the events of this frame, and of those before it that were not yet fed, to those codes.
    void Feed(uint32_t frame);

    // For somebody else to act on: the events up to this frame that were not taken yet.
    [[nodiscard]] std::span<const INPUT_EVENT> TakeDue(uint32_t frame);
    // Of those only the ones of the earliest frame, so that whoever looks less often than every frame
    // does not see a press and its release at once.
    [[nodiscard]] std::span<const INPUT_EVENT> TakeEarliest(uint32_t frame);

    [[nodiscard]] const std::vector<INPUT_EVENT>& Events() const { return events; }

private:
    std::vector<INPUT_EVENT> events; // by rising frame
    size_t next = 0;
};
