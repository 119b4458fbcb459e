// The input actions as the options screen lists them: those of one machine and the program's own, with their two
// bindings each, and which of them are in each other's way.
//
// An action is an index into InputActions(). Bindings are read from the settings and written to them at once.
// Thread: main.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

struct MACHINE_FACTS;

inline constexpr uint32_t kActionInputs = 2; // primary and secondary

struct INPUT_SYSTEM {
    const wchar_t* name;
    const MACHINE_FACTS* facts;
};
// In the order of the screen.
[[nodiscard]] std::span<const INPUT_SYSTEM> InputSystems();

// The machine's actions, then the program's own.
[[nodiscard]] std::vector<size_t> ActionsOf(const MACHINE_FACTS& facts);
[[nodiscard]] bool IsProgramAction(size_t action);

[[nodiscard]] uint32_t ActionBinding(size_t action, uint32_t input);
void SetActionBinding(size_t action, uint32_t input, uint32_t binding);
void SetDefaultBindings(); // of every action

// The bindings of every action.
using BindingSnapshot = std::vector<std::pair<int32_t, int32_t>>;
[[nodiscard]] BindingSnapshot TakeBindings();
void PutBindings(const BindingSnapshot& snapshot);

// The others among `actions` that one of the action's bindings acts for as well. Walking in the room and playing
// are apart: what is read in the one is not read in the other.
[[nodiscard]] std::vector<size_t> SharingBinding(std::span<const size_t> actions, size_t action,
                                                 uint32_t input);
