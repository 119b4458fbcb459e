// A script of button presses: lines "FRAME ACTION down|up", with '#' comments and empty lines.
//
// Actions have the names that `ombrelune actions` prints, spaces included. Every action is bound to a
// code of its own that no device has, so that a script does not depend on the user's bindings, and
// actions that share a key stay separate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class SettingsStore;

struct INPUT_EVENT {
    uint32_t frame; // it happens before this frame; frames count from 1
    size_t action;  // index into InputActions
    bool down;
};

// The index in InputActions of an action's name, in any case. False for an unknown one.
[[nodiscard]] bool FindAction(std::string_view name, size_t& index);

class InputScript {
public:
    // False for an invalid script, with the line and what is wrong with it.
    [[nodiscard]] bool Parse(std::string_view text, std::string& error);

    // The same from a file; the error names it.
    [[nodiscard]] bool Load(const std::string& path, std::string& error);

    // Binds every action to its own code, in place of the settings' bindings.
    static void BindActions(SettingsStore& store);

    // Feeds the events up to this frame that were not yet fed to those codes.
    void Feed(uint32_t frame);

    // The events up to this frame that were not taken yet, for the caller to act on.
    [[nodiscard]] std::span<const INPUT_EVENT> TakeDue(uint32_t frame);
    // Only the events of the earliest frame among these, so that a caller slower than the frames does
    // not get a press and its release at once.
    [[nodiscard]] std::span<const INPUT_EVENT> TakeEarliest(uint32_t frame);

    [[nodiscard]] const std::vector<INPUT_EVENT>& Events() const { return events; }

private:
    std::vector<INPUT_EVENT> events; // by rising frame
    size_t next = 0;
};
