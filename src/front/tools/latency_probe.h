// Measures the time from a key press to the picture that shows it.
//
// It waits until the picture stops changing, presses the key of an action, and measures the time until
// the first different picture has been swapped to the screen. The display's own delay comes on top.
#pragma once

#include <cstddef>

class Application;

// Presses the key some twenty times, at uneven intervals, and prints the figures on standard output.
// Returns an exit code: failure if the picture never stops changing or never reacts.
[[nodiscard]] int MeasureLatency(Application& application, size_t action);
