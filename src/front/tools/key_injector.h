// Simulated key presses, for scripted input and measurements in the window.
//
// An event goes through SDL's queue like one of a real keyboard, with the modifier keys that the
// action's binding asks for.
#pragma once

#include <cstddef>

// Presses or releases the key of an action, given by its index in InputActions. False if its primary
// binding is not a key.
[[nodiscard]] bool InjectAction(size_t action, bool down);
