// Measures how long it takes from a key to the picture that shows it.
//
// It waits until the picture stands still, presses the key of an action, and takes the time until the
// first picture that differs has been swapped to the screen. The display's own delay comes on top.
#pragma once

#include <cstddef>

class Application;

// Presses the key some twenty times, at uneven intervals, and prints the figures on standard output.
// Gives an exit code: failed when the picture never stands still or never answers.
[[nodiscard]] int MeasureLatency(Application& application, size_t action);
