// Threads that work beside the main one: downloads, scans of folders, the making of keys.
//
// A new thread inherits the processor and the priority of the one that starts it, and those of the main thread are for
// drawing. So the program says once how a helper gets rid of them, and every helper begins with HelperBegins.
//
// Threads: any. Order: SetHelperBegins before the first helper starts, or never.
#pragma once

void SetHelperBegins(void (*begins)()); // null: nothing is to be done

// The first thing that a helper does.
void HelperBegins();
