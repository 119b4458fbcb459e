// Gives the toolkit its fonts, images and theme.
//
// Order: once, before the first window. Thread: main.
#pragma once

// A theme of the player's, `theme.xml` in the home folder, is used instead of the built-in one. One that
// is there and cannot be read, or does not show the main menu's buttons, is reported, and the built-in one used.
void LoadAppearance();
