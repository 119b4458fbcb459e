// Presses keys for somebody who is not there: scripted input and measurements in the window.
//
// An event goes through SDL's queue like one of a real keyboard, with the modifier keys that the
// action's binding asks for.
#pragma once

#include <cstddef>

// Presses or releases the key of an action by its index in InputActions. False when its primary
// binding is no key.
[[nodiscard]] bool InjectAction(size_t action, bool down);
