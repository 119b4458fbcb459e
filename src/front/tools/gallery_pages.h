// The pages of the gallery: every control in every state, every style, every image.
//
// A page makes its controls below `root`, which fills the virtual screen of 1280 by 720 or more; they go
// with the root. Thread: main.
#pragma once

#include <span>

struct GHOSTMANAGER_WINDOW;

struct GALLERY_PAGE {
    const char* name; // for people
    void (*build)(GHOSTMANAGER_WINDOW* root);
};

[[nodiscard]] std::span<const GALLERY_PAGE> GalleryPages();

// The single pages, by the files that they are in.
void BuildTextPage(GHOSTMANAGER_WINDOW* root); // gallery_pages.cpp
void BuildButtonsPage(GHOSTMANAGER_WINDOW* root);
void BuildFieldsPage(GHOSTMANAGER_WINDOW* root);
void BuildKeyboardPage(GHOSTMANAGER_WINDOW* root);
void BuildStatesPage(GHOSTMANAGER_WINDOW* root);  // gallery_states.cpp
void BuildWindowsPage(GHOSTMANAGER_WINDOW* root); // gallery_windows.cpp
void BuildMessagePage(GHOSTMANAGER_WINDOW* root);
void BuildImagesPage(GHOSTMANAGER_WINDOW* root); // gallery_looks.cpp
void BuildPicturesPage(GHOSTMANAGER_WINDOW* root);
void BuildStylesPage(GHOSTMANAGER_WINDOW* root);
void BuildFramesPage(GHOSTMANAGER_WINDOW* root);
void BuildRecordsPage(GHOSTMANAGER_WINDOW* root);
void BuildMenuPage(GHOSTMANAGER_WINDOW* root); // gallery_screens.cpp, in the screens' own sizes
void BuildBrowserPage(GHOSTMANAGER_WINDOW* root);
void BuildOptionsPage(GHOSTMANAGER_WINDOW* root);
